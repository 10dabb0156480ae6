// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/drive/SharedNode.h"

#include <fcntl.h>
#include <unistd.h>

namespace quarner {

SharedNode::SharedNode(const std::string& path)
    : _descriptor(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC)) {}

SharedNode::~SharedNode() {
    if (_descriptor >= 0)
        close(_descriptor);
}

} // namespace quarner
