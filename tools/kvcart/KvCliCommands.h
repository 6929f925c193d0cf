#ifndef KVCART_TOOLS_KVCLICOMMANDS_H
#define KVCART_TOOLS_KVCLICOMMANDS_H

#include "tools/kvcart/KvCliArguments.h"

#include <cstdio>
#include <string>
#include <vector>

// The commands of the kvcart program. Main reads the command line, finds the
// catalogue, runs one command and returns the exit status: 0 when all went
// well, 1 for input lines that could not be converted, a catalogue file with
// errors or an edit that could not be saved, 2 for usage errors (an unknown
// command or option, wrong arguments, a coordinate system that does not
// resolve, no catalogue).
class CKvMapProjection;

class CKvCliCommands
{
public:
    enum EExitStatus
    {
        eSuccess = 0,
        eBadInput = 1,
        eUsage = 2
    };

    // programPath: where the running program lies, to find an installed catalogue
    // beside it (share/kvcart/ relative to its bin/).
    CKvCliCommands(const std::string& programPath, FILE* out, FILE* err);
    CKvCliCommands(const CKvCliCommands&) = delete;
    CKvCliCommands& operator=(const CKvCliCommands&) = delete;
    virtual ~CKvCliCommands() = default;

    int Main(int argc, const char* const* argv);

    // The catalogue directory used without --catalogue: the installed one beside
    // the program, else the source checkout's data/ (a build tree), else the
    // configured installation's; "" when none holds a catalogue. Ends with "/".
    static std::string FindCatalogue(const std::string& programPath);
    // $XDG_CONFIG_HOME/kvcart/, else $HOME/.config/kvcart/; ends with "/". ""
    // when neither is an absolute path.
    static std::string DefaultUserDirectory();

private:
    struct SCommand;
    static const std::vector<SCommand>& _commands();

    int _transform();
    int _info();
    int _proj4();
    int _wkt();
    int _list();
    int _ellipsoids();
    int _zone();
    int _geod();
    int _check();
    int _add();
    int _remove();

    int _usage(const std::string& message) const;
    void _help(const SCommand* command) const;
    bool _readCatalogue();
    // A coordinate-system argument as text: "@path" is the file's content.
    bool _coordSysText(const std::string& argument, std::string& text) const;
    // A number argument; false, with a usage message printed, when it is not one.
    bool _number(const std::string& argument, const char* what, double& value) const;
    bool _saveUserCatalogue();
    // Each warning of the system's reading as a line "<prefix><what>: <warning>".
    void _reportReading(const std::string& shown, const CKvMapProjection& system, FILE* to, const char* prefix) const;

    std::string m_programPath;
    FILE* m_out;
    FILE* m_err;
    CKvCliArguments m_args;
    const SCommand* m_pCommand = nullptr;
    std::string m_catalogueDirectory;
    std::string m_userDirectory;
};

#endif
