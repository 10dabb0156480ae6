// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <unistd.h>

#include <cstdlib>

namespace quarner {

/// Acts as an ordinary user for the duration of a scope. In most containers tests run as root.
class OrdinaryUser {
public:
    OrdinaryUser() : _before(geteuid()) {
        constexpr uid_t nobody = 65534;
        if (_before == 0)
            _isSet = seteuid(nobody) == 0;
    }
    ~OrdinaryUser() {
        if (_before == 0 && seteuid(_before) != 0)
            std::abort();
    }
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;
    bool isSet() const { return _isSet; }

private:
    const uid_t _before;
    bool _isSet = true;
};

} // namespace quarner
