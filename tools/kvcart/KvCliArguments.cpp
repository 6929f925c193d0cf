#include "tools/kvcart/KvCliArguments.h"

#include <cstdlib>
#include <cstring>

namespace {

// "-3", "-0.5", "-.5": a negative number, not an option.
bool IsNegativeNumber(const char* text)
{
    if (text[0] != '-' || text[1] == '\0')
        return false;
    char* end = nullptr;
    std::strtod(text, &end);
    return end != nullptr && *end == '\0';
}

} // namespace

bool CKvCliArguments::Parse(int argc, const char* const* argv, const std::vector<SOption>& known, std::string& error)
{
    bool optionsEnded = false;
    std::vector<std::string> positionals;
    for (int i = 1; i < argc; ++i) {
        const char* arg = argv[i];
        if (optionsEnded || arg[0] != '-' || std::strcmp(arg, "-") == 0 || IsNegativeNumber(arg)) {
            positionals.emplace_back(arg);
            continue;
        }
        if (std::strcmp(arg, "--") == 0) {
            optionsEnded = true;
            continue;
        }
        if (std::strcmp(arg, "-h") == 0) {
            m_options.emplace_back("help", std::string());
            continue;
        }
        if (arg[1] != '-') {
            error = std::string("unknown option '") + arg + "'";
            return false;
        }
        std::string name = arg + 2, value;
        const size_t equals = name.find('=');
        const bool inlineValue = equals != std::string::npos;
        if (inlineValue) {
            value = name.substr(equals + 1);
            name.erase(equals);
        }
        const SOption* option = nullptr;
        for (const SOption& o : known)
            if (name == o.name)
                option = &o;
        if (option == nullptr) {
            error = "unknown option '--" + name + "'";
            return false;
        }
        if (option->takesValue && !inlineValue) {
            if (i + 1 >= argc) {
                error = "option '--" + name + "' needs a value";
                return false;
            }
            value = argv[++i];
        } else if (!option->takesValue && inlineValue) {
            error = "option '--" + name + "' takes no value";
            return false;
        }
        m_options.emplace_back(name, value);
    }
    if (!positionals.empty()) {
        m_command = positionals.front();
        m_positionals.assign(positionals.begin() + 1, positionals.end());
    }
    return true;
}

bool CKvCliArguments::Has(const char* name) const
{
    for (const auto& option : m_options)
        if (option.first == name)
            return true;
    return false;
}

std::string CKvCliArguments::GetValue(const char* name, const std::string& def) const
{
    std::string value = def;
    for (const auto& option : m_options)
        if (option.first == name)
            value = option.second;
    return value;
}

std::string CKvCliArguments::FirstNotIn(const std::vector<const char*>& allowed) const
{
    for (const auto& option : m_options) {
        bool found = false;
        for (const char* name : allowed)
            found = found || option.first == name;
        if (!found)
            return option.first;
    }
    return std::string();
}
