#include "paramfile/Gxr.h"

#include "paramfile/NumericLocale.h"
#include "paramfile/ParamFileReader.h"
#include "paramfile/ParamFileWriter.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <memory>

namespace {

// Trivially destructible on purpose: the catalogue writes itself back from a
// static destructor at process exit, after thread-local objects with destructors
// are gone. Messages longer than the buffer are truncated.
struct GxrErrorState
{
    int code;
    char message[1024];
};

GxrErrorState& ErrorState()
{
    thread_local GxrErrorState state = {GXR_OK, {0}};
    return state;
}

void ClearError()
{
    ErrorState().code = GXR_OK;
    ErrorState().message[0] = '\0';
}

void SetError(int code, const std::string& message)
{
    GxrErrorState& state = ErrorState();
    state.code = code;
    const size_t length = std::min(message.size(), sizeof state.message - 1);
    std::memcpy(state.message, message.data(), length);
    state.message[length] = '\0';
}

bool IsName(const char* name)
{
    if (name == nullptr || *name == '\0')
        return false;
    for (const char* p = name; *p != '\0'; ++p) {
        const char ch = *p;
        if (!((ch >= 'A' && ch <= 'Z') || (ch >= 'a' && ch <= 'z') || (ch >= '0' && ch <= '9') || ch == '_'))
            return false;
    }
    return std::strcmp(name, "TARGET") != 0 && std::strcmp(name, "SECTION") != 0 &&
           std::strcmp(name, "END_TARGET") != 0 && std::strcmp(name, "END_SECTION") != 0;
}

bool Matches(const std::string& nodeName, const char* name)
{
    return name == nullptr || nodeName == name;
}

// The num-th (from 1) element of a container whose name matches; null name matches all.
template <class Container>
auto NthByName(Container& nodes, const char* name, int num) -> decltype(&nodes.front())
{
    if (num < 1)
        return nullptr;
    for (auto& node : nodes)
        if (Matches(node.name, name) && --num == 0)
            return &node;
    return nullptr;
}

template <class Container>
int CountByName(const Container& nodes, const char* name)
{
    int count = 0;
    for (const auto& node : nodes)
        if (Matches(node.name, name))
            ++count;
    return count;
}

bool ReadWholeFile(const char* fileName, std::string& text)
{
    std::unique_ptr<FILE, int (*)(FILE*)> fp(std::fopen(fileName, "rb"), &std::fclose);
    if (!fp)
        return false;
    char buffer[65536];
    size_t n;
    while ((n = std::fread(buffer, 1, sizeof buffer, fp.get())) > 0)
        text.append(buffer, n);
    return std::ferror(fp.get()) == 0;
}

GxrFile* Parse(const std::string& displayName, const std::string& text)
{
    std::unique_ptr<GxrFile> file(new GxrFile);
    file->path = displayName;
    CParamFileReader reader(displayName, text);
    if (!reader.Parse(*file)) {
        SetError(GXR_ERR_SYNTAX, reader.GetError());
        return nullptr;
    }
    return file.release();
}

GxrParam* FindParam(GxrSection* section, const char* keyword, int keywordNum, int paramNum)
{
    if (section == nullptr || keyword == nullptr)
        return nullptr;
    return gxrParamByNum(gxrKeywordByNameNum(section, keyword, keywordNum), paramNum);
}

GxrParam NumberParam(double value)
{
    GxrParam param;
    param.number = value;
    param.text = CNumericLocale::FormatRoundTrip(value);
    return param;
}

GxrParam StringParam(const CString& value)
{
    GxrParam param;
    param.isString = true;
    param.text = value.GetStdString();
    return param;
}

int AppendParam(GxrKeyword* keyword, GxrParam param)
{
    if (keyword == nullptr) {
        SetError(GXR_ERR_ARGUMENT, "no keyword to add a parameter to");
        return GXR_ERR_ARGUMENT;
    }
    keyword->params.push_back(std::move(param));
    return GXR_OK;
}

} // namespace

GxrFile* gxrLoadFile(const char* fileName)
{
    ClearError();
    if (fileName == nullptr) {
        SetError(GXR_ERR_ARGUMENT, "no file name");
        return nullptr;
    }
    std::string text;
    if (!ReadWholeFile(fileName, text)) {
        SetError(GXR_ERR_OPEN, std::string(fileName) + ": cannot read the file: " + std::strerror(errno));
        return nullptr;
    }
    GxrFile* file = Parse(fileName, text);
    return file;
}

GxrFile* gxrLoadText(const char* displayName, const char* text)
{
    ClearError();
    return Parse(displayName != nullptr ? displayName : "<text>", text != nullptr ? text : "");
}

GxrFile* gxrCreate(const char* fileName)
{
    ClearError();
    GxrFile* file = new GxrFile;
    file->path = fileName != nullptr ? fileName : "";
    return file;
}

int gxrWrite(GxrFile* file)
{
    if (file == nullptr) {
        SetError(GXR_ERR_ARGUMENT, "no file to write");
        return GXR_ERR_ARGUMENT;
    }
    return gxrWriteAs(file, file->path.c_str());
}

int gxrWriteAs(GxrFile* file, const char* fileName)
{
    ClearError();
    if (file == nullptr || fileName == nullptr || *fileName == '\0') {
        SetError(GXR_ERR_ARGUMENT, "no file or file name to write");
        return GXR_ERR_ARGUMENT;
    }
    std::string error;
    if (!CParamFileWriter::WriteAtomically(fileName, CParamFileWriter::ToText(*file), error)) {
        SetError(GXR_ERR_WRITE, error);
        return GXR_ERR_WRITE;
    }
    return GXR_OK;
}

void gxrClose(GxrFile* file)
{
    delete file;
}

int gxrGetErrorGlb()
{
    const int code = ErrorState().code;
    ErrorState().code = GXR_OK;
    return code;
}

int gxrPeekErrorGlb()
{
    return ErrorState().code;
}

const char* gxrGetErrorMessageGlb()
{
    return ErrorState().message;
}

int gxrGetNoTargets(GxrFile* file, const char* name)
{
    return file != nullptr ? CountByName(file->targets, name) : 0;
}

GxrTarget* gxrTargetByNameNum(GxrFile* file, const char* name, int num)
{
    return file != nullptr ? NthByName(file->targets, name, num) : nullptr;
}

GxrTarget* gxrAddTarget(GxrFile* file, const char* name)
{
    if (file == nullptr || !IsName(name)) {
        SetError(GXR_ERR_ARGUMENT, std::string("cannot add target '") + (name ? name : "") + "'");
        return nullptr;
    }
    file->targets.push_back(GxrTarget{name, {}, 0});
    return &file->targets.back();
}

const char* gxrGetTargetName(const GxrTarget* target)
{
    return target != nullptr ? target->name.c_str() : "";
}

int gxrGetNoSections(GxrTarget* target, const char* name)
{
    return target != nullptr ? CountByName(target->sections, name) : 0;
}

GxrSection* gxrSectionByNameNum(GxrTarget* target, const char* name, int num)
{
    return target != nullptr ? NthByName(target->sections, name, num) : nullptr;
}

GxrSection* gxrSectionByNum(GxrTarget* target, int num)
{
    return gxrSectionByNameNum(target, nullptr, num);
}

const char* gxrGetSectionName(const GxrSection* section)
{
    return section != nullptr ? section->name.c_str() : "";
}

GxrSection* gxrAddSection(GxrTarget* target, const char* name)
{
    if (target == nullptr || !IsName(name)) {
        SetError(GXR_ERR_ARGUMENT, std::string("cannot add section '") + (name ? name : "") + "'");
        return nullptr;
    }
    target->sections.push_back(GxrSection{name, {}, 0, false});
    return &target->sections.back();
}

int gxrEndSection(GxrSection* section)
{
    if (section == nullptr) {
        SetError(GXR_ERR_ARGUMENT, "no section to end");
        return GXR_ERR_ARGUMENT;
    }
    section->closed = true;
    return GXR_OK;
}

int gxrGetNoKeywords(GxrSection* section, const char* name)
{
    return section != nullptr ? CountByName(section->keywords, name) : 0;
}

GxrKeyword* gxrKeywordByNameNum(GxrSection* section, const char* name, int num)
{
    return section != nullptr ? NthByName(section->keywords, name, num) : nullptr;
}

GxrKeyword* gxrKeywordByNum(GxrSection* section, int num)
{
    return gxrKeywordByNameNum(section, nullptr, num);
}

const char* gxrGetKeywordName(const GxrKeyword* keyword)
{
    return keyword != nullptr ? keyword->name.c_str() : "";
}

int gxrGetKeywordLine(const GxrKeyword* keyword)
{
    return keyword != nullptr ? keyword->line : 0;
}

int gxrGetNoParams(const GxrKeyword* keyword)
{
    return keyword != nullptr ? static_cast<int>(keyword->params.size()) : 0;
}

GxrParam* gxrParamByNum(GxrKeyword* keyword, int num)
{
    if (keyword == nullptr || num < 1 || static_cast<size_t>(num) > keyword->params.size())
        return nullptr;
    return &keyword->params[static_cast<size_t>(num - 1)];
}

bool gxrIsString(const GxrParam* param)
{
    return param != nullptr && param->isString;
}

int gxrGetInt(const GxrParam* param)
{
    if (param == nullptr || param->isString || std::isnan(param->number))
        return 0;
    if (param->number >= static_cast<double>(INT_MAX))
        return INT_MAX;
    if (param->number <= static_cast<double>(INT_MIN))
        return INT_MIN;
    return static_cast<int>(param->number);
}

double gxrGetDouble(const GxrParam* param)
{
    return (param == nullptr || param->isString) ? 0.0 : param->number;
}

CString gxrGetString(const GxrParam* param)
{
    return param != nullptr ? CString(param->text) : CString();
}

int gxrGetParam(GxrSection* section, const char* keyword, CString* value, int keywordNum, int paramNum)
{
    const GxrParam* param = FindParam(section, keyword, keywordNum, paramNum);
    if (param == nullptr || value == nullptr)
        return 0;
    *value = gxrGetString(param);
    return 1;
}

int gxrGetParam(GxrSection* section, const char* keyword, double* value, int keywordNum, int paramNum)
{
    const GxrParam* param = FindParam(section, keyword, keywordNum, paramNum);
    if (param == nullptr || param->isString || value == nullptr)
        return 0;
    *value = param->number;
    return 1;
}

int gxrGetParam(GxrSection* section, const char* keyword, int* value, int keywordNum, int paramNum)
{
    const GxrParam* param = FindParam(section, keyword, keywordNum, paramNum);
    if (param == nullptr || param->isString || value == nullptr)
        return 0;
    *value = gxrGetInt(param);
    return 1;
}

GxrKeyword* gxrAddKeyword(GxrSection* section, const char* keyword)
{
    if (section == nullptr || section->closed || !IsName(keyword)) {
        SetError(GXR_ERR_ARGUMENT, std::string("cannot add keyword '") + (keyword ? keyword : "") +
                                       (section != nullptr && section->closed ? "' to an ended section" : "'"));
        return nullptr;
    }
    section->keywords.push_back(GxrKeyword{keyword, {}, 0});
    return &section->keywords.back();
}

int gxrAppendParam(GxrKeyword* keyword, const CString& value)
{
    return AppendParam(keyword, StringParam(value));
}

int gxrAppendParam(GxrKeyword* keyword, double value)
{
    return AppendParam(keyword, NumberParam(value));
}

int gxrPutParam(GxrSection* section, const char* keyword, const CString& value)
{
    GxrKeyword* line = gxrAddKeyword(section, keyword);
    return line != nullptr ? gxrAppendParam(line, value) : GXR_ERR_ARGUMENT;
}

int gxrPutParam(GxrSection* section, const char* keyword, const char* value)
{
    return gxrPutParam(section, keyword, CString(value));
}

int gxrPutParam(GxrSection* section, const char* keyword, double value)
{
    GxrKeyword* line = gxrAddKeyword(section, keyword);
    return line != nullptr ? gxrAppendParam(line, value) : GXR_ERR_ARGUMENT;
}
