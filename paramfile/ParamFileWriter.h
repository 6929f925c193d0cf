#ifndef KVCART_PARAMFILE_PARAMFILEWRITER_H
#define KVCART_PARAMFILE_PARAMFILEWRITER_H

#include "paramfile/ParamTree.h"

#include <string>

// Turns a GxrFile into text and stores it atomically: the text goes to a
// temporary file in the destination's directory, which is flushed, synced and
// then renamed over the destination. A crash or a full disk never leaves a
// truncated file behind, and a failed write keeps the old file as it was.
class CParamFileWriter
{
public:
    static std::string ToText(const GxrFile& file);
    // One section as ToText writes it.
    static std::string SectionText(const GxrSection& section);
    static bool WriteAtomically(const std::string& path, const std::string& text, std::string& error);

private:
    static void _appendQuoted(std::string& out, const std::string& text);
};

#endif
