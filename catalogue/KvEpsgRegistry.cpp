#include "catalogue/KvEpsgRegistry.h"

#include "catalogue/KvCartSetup.h"
#include "paramfile/NumericLocale.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>
#include <strings.h>
#include <vector>

namespace {

const char* const kFileName = "epsg_registry.txt";

// Splits one record at its tabs, without copying.
std::vector<std::pair<const char*, size_t>> Fields(const char* line, size_t length)
{
    std::vector<std::pair<const char*, size_t>> fields;
    size_t start = 0;
    for (size_t i = 0; i <= length; ++i) {
        if (i == length || line[i] == '\t') {
            fields.emplace_back(line + start, i - start);
            start = i + 1;
        }
    }
    return fields;
}

std::string Text(const std::pair<const char*, size_t>& field)
{
    std::string text(field.first, field.second);
    return text == "-" ? std::string() : text;
}

double Number(const std::pair<const char*, size_t>& field, double absent)
{
    const std::string text(field.first, field.second);
    double value = absent;
    if (text != "-" && !CNumericLocale::ParseDouble(text.c_str(), value))
        value = absent;
    return value;
}

bool Integer(const std::pair<const char*, size_t>& field, int& value)
{
    if (field.second == 0 || field.second > 9)
        return false;
    int v = 0;
    for (size_t i = 0; i < field.second; ++i) {
        const char c = field.first[i];
        if (c < '0' || c > '9')
            return false;
        v = v * 10 + (c - '0');
    }
    value = v;
    return true;
}

// The shortest decimal text that reads back to the same double ("446.448",
// not "446.44799999999998").
void AppendFormat(std::string& out, const char* format, ...)
{
    va_list args;
    va_start(args, format);
    CNumericLocale::AppendVFormat(out, format, args);
    va_end(args);
}

std::string Shortest(double value)
{
    for (int digits = 15; digits < 17; ++digits) {
        std::string text;
        AppendFormat(text, "%.*g", digits, value);
        double back = 0.0;
        if (CNumericLocale::ParseDouble(text.c_str(), back) && back == value)
            return text;
    }
    return CNumericLocale::FormatRoundTrip(value);
}

} // namespace

struct CKvEpsgRegistry::SData
{
    struct SIndex
    {
        char authority[5]; // "EPSG" / "ESRI"
        int code;
        size_t offset, length;
    };
    std::string path;
    std::string text;     // the whole file
    std::string version;  // its first line
    std::string error;    // why it could not be read
    std::vector<SShift> shifts;
    std::vector<std::pair<size_t, size_t>> nodes; // GEOGCS texts: offset, length in text
    std::vector<SIndex> index;                    // sorted by (authority, code)
    struct SDatum
    {
        std::string key;
        size_t shift;
        std::string system;
    };
    std::vector<SDatum> datums; // sorted by key
};

CKvEpsgRegistry& CKvEpsgRegistry::Instance()
{
    static CKvEpsgRegistry registry;
    return registry;
}

bool CKvEpsgRegistry::ParseCode(const char* text, std::string& authority, int& code)
{
    if (text == nullptr)
        return false;
    const char* p = text;
    while (*p == ' ' || *p == '\t' || *p == '\r' || *p == '\n')
        ++p;
    std::string auth;
    if (strncasecmp(p, "EPSG:", 5) == 0)
        auth = "EPSG";
    else if (strncasecmp(p, "ESRI:", 5) == 0)
        auth = "ESRI";
    else
        return false;
    p += 5;
    int value = 0;
    int digits = 0;
    while (*p >= '0' && *p <= '9') {
        if (++digits > 9)
            return false;
        value = value * 10 + (*p - '0');
        ++p;
    }
    if (digits == 0)
        return false;
    while (*p == ' ' || *p == '\t' || *p == '\r' || *p == '\n')
        ++p;
    if (*p != '\0')
        return false;
    authority = auth;
    code = value;
    return true;
}

void CKvEpsgRegistry::UseFile(const std::string& path)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_explicitPath = path;
    m_data.reset();
}

std::string CKvEpsgRegistry::GetPath() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_explicitPath.empty())
        return m_explicitPath;
    const std::string& directory = CKvCartSetup::Instance()->GetSystemDirectory();
    return directory.empty() ? std::string() : directory + kFileName;
}

std::shared_ptr<const CKvEpsgRegistry::SData> CKvEpsgRegistry::_data() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    // Without a catalogue directory there is no registry: a file of its name in
    // whatever the working directory is would be a guess, not the host's data.
    const std::string& directory = CKvCartSetup::Instance()->GetSystemDirectory();
    const std::string path =
        !m_explicitPath.empty() ? m_explicitPath : directory.empty() ? std::string() : directory + kFileName;
    if (m_data && m_data->path == path)
        return m_data;

    auto data = std::make_shared<SData>();
    data->path = path;
    if (path.empty()) {
        data->error = "no catalogue directory is set (CARTSETUPLINUX was not called): the EPSG registry is not read";
        m_data = data;
        return m_data;
    }
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        data->error = "the EPSG registry '" + path + "' cannot be read (is the catalogue directory set?)";
        m_data = data;
        return m_data;
    }
    std::ostringstream all;
    all << in.rdbuf();
    data->text = all.str();
    const std::string& t = data->text;

    size_t lineNumber = 0;
    for (size_t start = 0; start < t.size();) {
        size_t end = t.find('\n', start);
        if (end == std::string::npos)
            end = t.size();
        ++lineNumber;
        const char* line = t.data() + start;
        const size_t length = end - start;
        if (length > 0 && line[0] == '#') {
            if (data->version.empty())
                data->version = std::string(line + 1, length - 1);
        } else if (length > 2 && line[1] == '\t') {
            const char kind = line[0];
            bool ok = true;
            if (kind == 'P' || kind == 'G') {
                // Only the index is taken now; the record is read when asked for.
                const char* a = line + 2;
                const char* tab = static_cast<const char*>(std::memchr(a, '\t', length - 2));
                int code = 0;
                if (tab != nullptr && tab - a == 4) {
                    const char* c = tab + 1;
                    const char* tab2 = static_cast<const char*>(std::memchr(c, '\t', line + length - c));
                    ok = tab2 != nullptr && Integer({c, static_cast<size_t>(tab2 - c)}, code);
                } else {
                    ok = false;
                }
                if (ok) {
                    SData::SIndex entry;
                    std::memcpy(entry.authority, a, 4);
                    entry.authority[4] = '\0';
                    entry.code = code;
                    entry.offset = start;
                    entry.length = length;
                    data->index.push_back(entry);
                }
            } else if (kind == 'W') {
                const auto f = Fields(line, length);
                int id = 0;
                ok = f.size() == 3 && Integer(f[1], id) && static_cast<size_t>(id) == data->nodes.size();
                if (ok)
                    data->nodes.emplace_back(static_cast<size_t>(f[2].first - t.data()), f[2].second);
            } else if (kind == 'D') {
                const auto f = Fields(line, length);
                int id = 0;
                ok = f.size() == 5 && Integer(f[2], id) && static_cast<size_t>(id) < data->shifts.size();
                if (ok)
                    data->datums.push_back({Text(f[1]), static_cast<size_t>(id), Text(f[3]) + ":" + Text(f[4])});
            } else if (kind == 'S') {
                const auto f = Fields(line, length);
                int id = 0;
                ok = f.size() == 16 && Integer(f[1], id) && static_cast<size_t>(id) == data->shifts.size();
                if (ok) {
                    SShift shift;
                    shift.code = Text(f[2]);
                    shift.name = Text(f[3]);
                    shift.accuracy = Number(f[4], -1.0);
                    shift.parameters = static_cast<int>(Number(f[5], -1.0));
                    for (int i = 0; i < 7; ++i)
                        shift.values[i] = Number(f[6 + i], 0.0);
                    shift.convention = Text(f[13]);
                    shift.better = Text(f[14]);
                    shift.betterAccuracy = Number(f[15], -1.0);
                    ok = shift.parameters == 0 || shift.parameters == 3 || shift.parameters == 7;
                    data->shifts.push_back(shift);
                }
            } else {
                ok = false;
            }
            if (!ok) {
                data->error = "the EPSG registry '" + path + "' is damaged at line " + std::to_string(lineNumber);
                data->index.clear();
                break;
            }
        }
        start = end + 1;
    }
    // The shipped registry is written in key order (tools/make_epsg_registry.py),
    // so that loading it is a linear check; a file in another order is sorted.
    const auto datumLess = [](const SData::SDatum& x, const SData::SDatum& y) { return x.key < y.key; };
    const auto indexLess = [](const SData::SIndex& x, const SData::SIndex& y) {
        const int c = std::strcmp(x.authority, y.authority);
        return c != 0 ? c < 0 : x.code < y.code;
    };
    if (!std::is_sorted(data->datums.begin(), data->datums.end(), datumLess))
        std::sort(data->datums.begin(), data->datums.end(), datumLess);
    if (!std::is_sorted(data->index.begin(), data->index.end(), indexLess))
        std::sort(data->index.begin(), data->index.end(), indexLess);
    m_data = data;
    return m_data;
}

bool CKvEpsgRegistry::Find(const std::string& authority, int code, SEntry& entry) const
{
    const std::shared_ptr<const SData> data = _data();
    const auto& index = data->index;
    const auto it = std::lower_bound(index.begin(), index.end(), std::make_pair(authority, code),
                                     [](const SData::SIndex& x, const std::pair<std::string, int>& key) {
                                         const int c = std::strcmp(x.authority, key.first.c_str());
                                         return c != 0 ? c < 0 : x.code < key.second;
                                     });
    if (it == index.end() || authority != it->authority || it->code != code)
        return false;
    const auto f = Fields(data->text.data() + it->offset, it->length);
    if (f.size() != 11)
        return false;
    SEntry e;
    e.authority = it->authority;
    e.code = code;
    e.geographic = data->text[it->offset] == 'G';
    e.name = Text(f[3]);
    e.west = Number(f[4], -180.0);
    e.south = Number(f[5], -90.0);
    e.east = Number(f[6], 180.0);
    e.north = Number(f[7], 90.0);
    int shift = -1;
    if (Integer(f[8], shift) && static_cast<size_t>(shift) < data->shifts.size()) {
        e.hasShift = true;
        e.shift = data->shifts[static_cast<size_t>(shift)];
    }
    e.reason = Text(f[9]);

    // The text, with its GEOGCS node put back and the shift in its DATUM node.
    const std::string body(f[10].first, f[10].second);
    const size_t at = body.find('@');
    size_t digits = at == std::string::npos ? 0 : at + 1;
    int node = -1;
    int value = 0;
    while (digits < body.size() && body[digits] >= '0' && body[digits] <= '9' && value < 100000000)
        value = value * 10 + (body[digits++] - '0');
    if (at != std::string::npos && digits > at + 1)
        node = value;
    if (node < 0 || static_cast<size_t>(node) >= data->nodes.size())
        return false;
    std::string geogcs = data->text.substr(data->nodes[static_cast<size_t>(node)].first,
                                           data->nodes[static_cast<size_t>(node)].second);
    if (e.hasShift && (e.shift.parameters > 0 || !e.shift.code.empty())) {
        // TOWGS84 closes the DATUM node: after its SPHEROID, before its "]".
        const size_t datum = geogcs.find("DATUM[");
        const size_t spheroid = datum == std::string::npos ? datum : geogcs.find("SPHEROID[", datum);
        const size_t close = spheroid == std::string::npos ? spheroid : geogcs.find("]]", spheroid);
        if (close != std::string::npos) {
            std::string towgs84 = ",TOWGS84[";
            for (int i = 0; i < 7; ++i) {
                if (i > 0)
                    towgs84 += ',';
                towgs84 += Shortest(e.shift.values[i]);
            }
            towgs84 += ']';
            geogcs.insert(close + 1, towgs84);
        }
    }
    e.wkt = body.substr(0, at) + geogcs + body.substr(digits);
    // A PROJCS named as the record is kept as "$".
    if (e.wkt.compare(0, 10, "PROJCS[\"$\"") == 0)
        e.wkt.replace(8, 1, e.name);
    entry = std::move(e);
    return true;
}

std::string CKvEpsgRegistry::DatumKey(const std::string& name)
{
    size_t start = 0;
    if (name.size() > 2 && (name[0] == 'D' || name[0] == 'd') && name[1] == '_')
        start = 2;
    std::string key;
    for (size_t i = start; i < name.size(); ++i) {
        const char c = name[i];
        if (c >= 'A' && c <= 'Z')
            key += static_cast<char>(c - 'A' + 'a');
        else if ((c >= 'a' && c <= 'z') || (c >= '0' && c <= '9'))
            key += c;
    }
    return key;
}

bool CKvEpsgRegistry::FindDatum(const std::string& name, SShift& shift, std::string& system) const
{
    const std::string key = DatumKey(name);
    if (key.empty())
        return false;
    const std::shared_ptr<const SData> data = _data();
    const auto it = std::lower_bound(data->datums.begin(), data->datums.end(), key,
                                     [](const SData::SDatum& d, const std::string& k) { return d.key < k; });
    if (it == data->datums.end() || it->key != key)
        return false;
    shift = data->shifts[it->shift];
    system = it->system;
    return true;
}

bool CKvEpsgRegistry::ForEach(const std::function<void(const std::string&, int, bool, const std::string&)>& visit) const
{
    const std::shared_ptr<const SData> data = _data();
    if (!data->error.empty())
        return false;
    for (const SData::SIndex& i : data->index) {
        const char* line = data->text.data() + i.offset;
        const auto f = Fields(line, i.length);
        if (f.size() < 4)
            continue;
        visit(i.authority, i.code, line[0] == 'G', Text(f[3]));
    }
    return true;
}

std::string CKvEpsgRegistry::GetError() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_data ? m_data->error : std::string();
}

std::string CKvEpsgRegistry::GetVersion() const
{
    return _data()->version;
}
