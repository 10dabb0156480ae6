// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "adapters/scripted/ScriptedContext.h"
#include "quarner/platform/LogSink.h"
#include "quarner/platform/TextService.h"

namespace quarner {

/// The text service, with a string table, a decimal separator and a collation.
class ScriptedTexts : public TextService {
public:
    using Collation = std::function<int(const std::string&, const std::string&)>;

    explicit ScriptedTexts(std::shared_ptr<ScriptedContext> context);

    int compareLocalizedCaseInsensitive(const std::string& a, const std::string& b) override;
    std::string localizedNumber(double number, int decimals) override;
    std::string localizedString(const std::string& key) override;

    void setText(const std::string& key, const std::string& translation);
    void setDecimalSeparator(const std::string& separator);
    void setCollation(Collation collation);

private:
    const std::shared_ptr<ScriptedContext> _context;
    std::mutex _mutex;
    std::map<std::string, std::string> _table;
    std::string _separator = ".";
    Collation _collation;
};

/// A log that keeps its lines.
class ScriptedLog : public LogSink {
public:
    void log(const std::string& line) override;
    std::vector<std::string> lines() const;

private:
    mutable std::mutex _mutex;
    std::vector<std::string> _lines;
};

} // namespace quarner
