#ifndef KVCART_PARAMFILE_GXR_H
#define KVCART_PARAMFILE_GXR_H

// The parameter-file library: reading, inspecting, building and writing files
// of targets, sections and keyword lines.
//
//   # a comment runs to the end of the line
//   TARGET ELLIPSOID_DEFINITION
//     SECTION REF_ELLIPSOID
//       Ellipsoid_Name   "WGS 84"
//       Semi_Major_Axis  6378137
//     END_SECTION
//   END_TARGET
//
// Names are identifiers (letters, digits, '_') and are matched exactly. Names may
// repeat; instances count from 1 in file order. A parameter is a C-locale number
// or a double-quoted string with the escapes \" \\ \n \t \r.
//
// Handles point into the file's tree and stay valid until gxrClose. Functions
// that fail record an error code and message for the calling thread, read with
// gxrGetErrorGlb (which clears it), gxrPeekErrorGlb and gxrGetErrorMessageGlb.

#include "paramfile/ParamTree.h"
#include "paramfile/String.h"

enum EGxrError
{
    GXR_OK = 0,
    GXR_ERR_OPEN = 1,     // the file cannot be opened or read
    GXR_ERR_SYNTAX = 2,   // the file is malformed
    GXR_ERR_WRITE = 3,    // the file cannot be written
    GXR_ERR_ARGUMENT = 4  // a null handle, a bad name or a closed section
};

// Files
GxrFile* gxrLoadFile(const char* fileName);
GxrFile* gxrLoadText(const char* displayName, const char* text);
GxrFile* gxrCreate(const char* fileName);
int gxrWrite(GxrFile* file);
int gxrWriteAs(GxrFile* file, const char* fileName);
void gxrClose(GxrFile* file);

// Errors of the calling thread
int gxrGetErrorGlb();
int gxrPeekErrorGlb();
const char* gxrGetErrorMessageGlb();

// Targets
int gxrGetNoTargets(GxrFile* file, const char* name);
GxrTarget* gxrTargetByNameNum(GxrFile* file, const char* name, int num);
GxrTarget* gxrAddTarget(GxrFile* file, const char* name);
const char* gxrGetTargetName(const GxrTarget* target);

// Sections: by name and instance, or all of a target's sections in order.
// A null name counts or finds sections of any name.
int gxrGetNoSections(GxrTarget* target, const char* name);
GxrSection* gxrSectionByNameNum(GxrTarget* target, const char* name, int num);
GxrSection* gxrSectionByNum(GxrTarget* target, int num);
const char* gxrGetSectionName(const GxrSection* section);
GxrSection* gxrAddSection(GxrTarget* target, const char* name);
int gxrEndSection(GxrSection* section);

// Keywords and their parameters (parameters count from 1)
int gxrGetNoKeywords(GxrSection* section, const char* name);
GxrKeyword* gxrKeywordByNameNum(GxrSection* section, const char* name, int num);
GxrKeyword* gxrKeywordByNum(GxrSection* section, int num);
const char* gxrGetKeywordName(const GxrKeyword* keyword);
int gxrGetKeywordLine(const GxrKeyword* keyword);
int gxrGetNoParams(const GxrKeyword* keyword);
GxrParam* gxrParamByNum(GxrKeyword* keyword, int num);

bool gxrIsString(const GxrParam* param);
// A number truncated toward zero and clamped to the int range; 0 for a string or NaN.
int gxrGetInt(const GxrParam* param);
// A number's value; 0.0 for a string.
double gxrGetDouble(const GxrParam* param);
// A string's value, or a number's text as written.
CString gxrGetString(const GxrParam* param);

// Parameter paramNum of instance keywordNum of a keyword. Returns nonzero when the
// keyword and parameter exist and have the asked kind (a number for double and
// int); otherwise returns 0 and leaves the output unchanged.
int gxrGetParam(GxrSection* section, const char* keyword, CString* value, int keywordNum, int paramNum);
int gxrGetParam(GxrSection* section, const char* keyword, double* value, int keywordNum, int paramNum);
int gxrGetParam(GxrSection* section, const char* keyword, int* value, int keywordNum, int paramNum);

// Writing: a keyword line with one value, or a keyword built up parameter by parameter.
int gxrPutParam(GxrSection* section, const char* keyword, const CString& value);
int gxrPutParam(GxrSection* section, const char* keyword, const char* value);
int gxrPutParam(GxrSection* section, const char* keyword, double value);
GxrKeyword* gxrAddKeyword(GxrSection* section, const char* keyword);
int gxrAppendParam(GxrKeyword* keyword, const CString& value);
int gxrAppendParam(GxrKeyword* keyword, double value);

#endif
