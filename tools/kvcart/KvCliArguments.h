#ifndef KVCART_TOOLS_KVCLIARGUMENTS_H
#define KVCART_TOOLS_KVCLIARGUMENTS_H

#include <string>
#include <vector>

// The command line of the program: a command word, positional arguments and
// long options ("--name", "--name=value" or "--name value"), in any order.
// "--" ends the options; "-" alone and negative numbers ("-3.5") are
// positional; "-h" is "--help".
class CKvCliArguments
{
public:
    struct SOption
    {
        const char* name; // without the leading "--"
        bool takesValue;
    };

    CKvCliArguments() = default;
    virtual ~CKvCliArguments() = default;

    // Reads argv[1..argc-1] against the options known to any command. False with
    // a message for an unknown option or a missing value.
    bool Parse(int argc, const char* const* argv, const std::vector<SOption>& known, std::string& error);
    // The first positional argument, or "" when there is none.
    const std::string& GetCommand() const { return m_command; }
    // The positional arguments after the command.
    const std::vector<std::string>& GetPositionals() const { return m_positionals; }
    bool Has(const char* name) const;
    // The value of the last occurrence, or def.
    std::string GetValue(const char* name, const std::string& def = std::string()) const;
    // The first option given that is not in allowed, or "" when all are allowed.
    std::string FirstNotIn(const std::vector<const char*>& allowed) const;

private:
    std::string m_command;
    std::vector<std::string> m_positionals;
    std::vector<std::pair<std::string, std::string>> m_options;
};

#endif
