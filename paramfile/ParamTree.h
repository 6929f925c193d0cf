#ifndef KVCART_PARAMFILE_PARAMTREE_H
#define KVCART_PARAMFILE_PARAMTREE_H

#include <deque>
#include <string>
#include <vector>

// The in-memory form of a parameter file. A file holds targets, a target holds
// sections, a section holds keyword lines, a keyword line holds parameters.
// The node types double as the opaque handles of the gxr functions; they live in
// deques so that a handle stays valid while further nodes are appended.

struct GxrParam
{
    bool isString = false;
    std::string text;   // the string's value, or a number's text as written
    double number = 0.0;
};

struct GxrKeyword
{
    std::string name;
    std::vector<GxrParam> params;
    int line = 0;       // source line, 0 for a keyword made in memory
};

struct GxrSection
{
    std::string name;
    std::deque<GxrKeyword> keywords;
    int line = 0;
    bool closed = false; // set by gxrEndSection; a closed section takes no more keywords
};

struct GxrTarget
{
    std::string name;
    std::deque<GxrSection> sections;
    int line = 0;
};

struct GxrFile
{
    std::string path;
    std::deque<GxrTarget> targets;
};

#endif
