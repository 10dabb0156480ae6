// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "adapters/scripted/ScriptedStage.h"
#include "quarner/platform/LogSink.h"
#include "quarner/platform/TextService.h"

namespace quarner {

/// The text service over a string table, a separator and an order of texts.
class ScriptedTexts : public TextService {
public:
    using Collation = std::function<int(const std::string&, const std::string&)>;

    explicit ScriptedTexts(std::shared_ptr<ScriptedStage> stage);

    int compareLocalizedCaseInsensitive(const std::string& a, const std::string& b) override;
    std::string localizedNumber(double number, int decimals) override;
    std::string localizedString(const std::string& key) override;

    void setText(const std::string& key, const std::string& translation);
    void setDecimalSeparator(const std::string& separator);
    void setCollation(Collation collation);

private:
    const std::shared_ptr<ScriptedStage> _stage;
    std::mutex _mutex;
    std::map<std::string, std::string> _table;
    std::string _separator = ".";
    Collation _collation;
};

/// Keeps the lines of the log.
class ScriptedLog : public LogSink {
public:
    void log(const std::string& line) override;
    std::vector<std::string> lines() const;

private:
    mutable std::mutex _mutex;
    std::vector<std::string> _lines;
};

} // namespace quarner
