#include "catalogue/KvUserCatalogue.h"

#include "paramfile/Gxr.h"
#include "paramfile/ParamFileWriter.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>
#include <set>
#include <sys/stat.h>

namespace {

// An exclusive advisory lock on the directory of a file, held for its lifetime.
// Without one (a file system that refuses it) the write goes on unlocked.
struct SDirectoryLock
{
    explicit SDirectoryLock(const std::string& path)
    {
        const size_t slash = path.rfind('/');
        const std::string dir = slash == std::string::npos ? "." : slash == 0 ? "/" : path.substr(0, slash);
        fd = ::open(dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (fd >= 0)
            while (::flock(fd, LOCK_EX) != 0 && errno == EINTR) {
            }
    }
    ~SDirectoryLock()
    {
        if (fd >= 0)
            ::close(fd);
    }
    SDirectoryLock(const SDirectoryLock&) = delete;
    SDirectoryLock& operator=(const SDirectoryLock&) = delete;
    int fd;
};

} // namespace

CKvUserCatalogue::CKvUserCatalogue(const std::string& path, const char* targetName, Writer writer)
    : m_path(path), m_targetName(targetName), m_writer(std::move(writer))
{
}

CKvUserCatalogue::~CKvUserCatalogue()
{
    FinishLoad();
}

CKvUserCatalogue::SStamp CKvUserCatalogue::_stamp(const std::string& path)
{
    SStamp stamp;
    struct stat st;
    if (::stat(path.c_str(), &st) != 0)
        return stamp;
    stamp.exists = true;
    stamp.device = st.st_dev;
    stamp.inode = st.st_ino;
    stamp.size = st.st_size;
    stamp.mtimeNs = static_cast<long long>(st.st_mtim.tv_sec) * 1000000000LL + st.st_mtim.tv_nsec;
    return stamp;
}

void CKvUserCatalogue::_note(const std::string& problem)
{
    m_problems += problem;
    m_problems += '\n';
}

void CKvUserCatalogue::Reject(const std::string& problem)
{
    if (!m_bRejected)
        m_rejection = problem;
    m_bRejected = true;
    _note(problem);
}

GxrTarget* CKvUserCatalogue::Load()
{
    FinishLoad();
    m_stamp = _stamp(m_path);
    struct stat st;
    if (::lstat(m_path.c_str(), &st) != 0 && errno == ENOENT) {
        m_status = GXR_ERR_OPEN;
        return nullptr; // no file yet: the write-back creates it
    }
    m_pLoaded = gxrLoadFile(m_path.c_str());
    if (m_pLoaded == nullptr) {
        Reject(gxrGetErrorMessageGlb());
        m_status = gxrGetErrorGlb();
        return nullptr;
    }
    m_status = GXR_OK;
    GxrTarget* main = nullptr;
    for (GxrTarget& target : m_pLoaded->targets) {
        if (main == nullptr && target.name == m_targetName) {
            main = &target;
            m_mainIndex = static_cast<int>(m_targets.size());
            m_targets.push_back(GxrTarget{target.name, {}, target.line});
        } else {
            m_targets.push_back(target);
            _note(m_path + ":" + std::to_string(target.line) + ": target '" + target.name +
                  "' is not read; it is kept in the file as it stands");
        }
    }
    return main;
}

void CKvUserCatalogue::FinishLoad()
{
    gxrClose(m_pLoaded);
    m_pLoaded = nullptr;
}

std::string CKvUserCatalogue::_text(const void* entry) const
{
    GxrFile scratch;
    scratch.targets.push_back(GxrTarget{m_targetName, {}, 0});
    m_writer(entry, &scratch.targets.back());
    return CParamFileWriter::ToText(scratch);
}

void CKvUserCatalogue::AddEntry(const void* entry)
{
    m_layout.push_back(SItem{entry, _text(entry), GxrSection()});
    m_members.insert(entry);
}

void CKvUserCatalogue::KeepSection(const GxrSection& section, const std::string& problem)
{
    m_layout.push_back(SItem{nullptr, std::string(), section});
    _note(problem);
}

void CKvUserCatalogue::Forget(const void* entry)
{
    // A deleted entry leaves its place: a new entry at the same address is new.
    m_members.erase(entry);
}

std::string CKvUserCatalogue::RescueName(const std::string& path, int attempt)
{
    std::string stem = path;
    const size_t slash = stem.rfind('/');
    const size_t dot = stem.rfind('.');
    if (dot != std::string::npos && (slash == std::string::npos || dot > slash))
        stem.erase(dot);
    return stem + (attempt <= 1 ? std::string(".unsaved.gxr") : ".unsaved." + std::to_string(attempt) + ".gxr");
}

bool CKvUserCatalogue::_rescue(const std::vector<const void*>& entries, std::string& rescuePath, std::string& error)
{
    // The first rescue file that is missing or reads cleanly takes the entries;
    // one that cannot be read is not touched either.
    for (int attempt = 1; attempt <= 9; ++attempt) {
        const std::string name = RescueName(m_path, attempt);
        struct stat st;
        GxrFile* file = nullptr;
        if (::lstat(name.c_str(), &st) != 0 && errno == ENOENT) {
            file = gxrCreate(name.c_str());
        } else if ((file = gxrLoadFile(name.c_str())) == nullptr) {
            gxrGetErrorGlb();
            continue;
        }
        GxrTarget* target = gxrTargetByNameNum(file, m_targetName.c_str(), 1);
        if (target == nullptr)
            target = gxrAddTarget(file, m_targetName.c_str());
        for (const void* entry : entries)
            m_writer(entry, target);
        const bool ok = gxrWrite(file) == GXR_OK;
        if (!ok)
            error = gxrGetErrorMessageGlb();
        gxrClose(file);
        if (ok)
            rescuePath = name;
        return ok;
    }
    error = m_path + ": no rescue file could be used";
    return false;
}

bool CKvUserCatalogue::WriteBack(const std::function<bool(const void*)>& isLive, const std::vector<const void*>& added,
                                 std::string& message)
{
    message.clear();
    // Writers of the same catalogue in other processes wait here, so that the
    // check for a change and the replacement are one step: the later writer
    // sees the earlier one's file and saves its own changes aside.
    SDirectoryLock lock(m_path);
    std::string reason;
    if (m_bRejected)
        reason = m_rejection;
    else if (!(_stamp(m_path) == m_stamp))
        reason = m_path + ": changed by another program since it was read";

    if (reason.empty()) {
        // Nothing changed (a look-up marks the list modified too): the file, with
        // its comments and layout, stays exactly as the user wrote it.
        bool unchanged = added.empty();
        for (const SItem& item : m_layout)
            if (unchanged && item.entry != nullptr)
                unchanged = m_members.count(item.entry) != 0 && isLive(item.entry) && _text(item.entry) == item.snapshot;
        if (unchanged && (m_stamp.exists || !m_layout.empty()))
            return true;

        GxrFile file;
        file.path = m_path;
        std::vector<SItem> layout;
        for (size_t i = 0; i <= m_targets.size(); ++i) {
            const bool mainHere = static_cast<int>(i) == m_mainIndex || (m_mainIndex < 0 && i == m_targets.size());
            if (!mainHere) {
                if (i < m_targets.size())
                    file.targets.push_back(m_targets[i]);
                continue;
            }
            file.targets.push_back(GxrTarget{m_targetName, {}, 0});
            GxrTarget* main = &file.targets.back();
            for (const SItem& item : m_layout) {
                if (item.entry == nullptr) {
                    main->sections.push_back(item.section);
                    layout.push_back(item);
                } else if (m_members.count(item.entry) != 0 && isLive(item.entry)) {
                    m_writer(item.entry, main);
                    layout.push_back(SItem{item.entry, _text(item.entry), GxrSection()});
                }
            }
            for (const void* entry : added) {
                m_writer(entry, main);
                layout.push_back(SItem{entry, _text(entry), GxrSection()});
            }
        }
        std::string error;
        if (CParamFileWriter::WriteAtomically(m_path, CParamFileWriter::ToText(file), error)) {
            m_layout = std::move(layout);
            m_members.clear();
            for (const SItem& item : m_layout)
                if (item.entry != nullptr)
                    m_members.insert(item.entry);
            if (m_mainIndex < 0)
                m_mainIndex = static_cast<int>(m_targets.size());
            m_targets.clear();
            for (size_t i = 0; i < file.targets.size(); ++i)
                m_targets.push_back(static_cast<int>(i) == m_mainIndex ? GxrTarget{m_targetName, {}, 0}
                                                                       : file.targets[i]);
            m_stamp = _stamp(m_path);
            return true;
        }
        reason = error;
    }

    // The file stays as it is. Save what the session would otherwise lose: its
    // new entries and the file's entries it edited.
    std::vector<const void*> toSave;
    std::vector<std::pair<const void*, std::string>> texts;
    auto wanted = [&](const void* entry) {
        const std::string text = _text(entry);
        for (const auto& done : m_rescued)
            if (done.first == entry && done.second == text)
                return;
        toSave.push_back(entry);
        texts.emplace_back(entry, text);
    };
    for (const void* entry : added)
        wanted(entry);
    int deleted = 0;
    for (const SItem& item : m_layout) {
        if (item.entry == nullptr)
            continue;
        if (m_members.count(item.entry) == 0 || !isLive(item.entry))
            ++deleted;
        else if (_text(item.entry) != item.snapshot)
            wanted(item.entry);
    }
    if (toSave.empty() && deleted == 0)
        return true; // nothing of the session is missing from the file as it stands
    message = m_path + " was not written: " + reason;
    bool saved = true;
    if (!toSave.empty()) {
        std::string rescuePath, error;
        if (_rescue(toSave, rescuePath, error)) {
            message += "\nthe session's " + std::to_string(toSave.size()) + " new or changed entr" +
                       (toSave.size() == 1 ? "y was" : "ies were") + " saved in " + rescuePath;
            m_rescued.insert(m_rescued.end(), texts.begin(), texts.end());
        } else {
            message += "\nthe session's " + std::to_string(toSave.size()) + " new or changed entr" +
                       (toSave.size() == 1 ? "y is" : "ies are") + " lost: " + error;
            saved = false;
        }
    }
    if (deleted > 0) {
        message += "\nthe deletion of " + std::to_string(deleted) + " entr" + (deleted == 1 ? "y" : "ies") +
                   " is not saved";
        saved = false;
    }
    return saved;
}

int CKvUserCatalogue::FinishRead(List& files, std::unique_ptr<CKvUserCatalogue> record, bool keep,
                                 std::string& problems)
{
    record->FinishLoad();
    problems += record->GetProblems();
    const int status = record->GetStatus();
    if (keep)
        files.push_back(std::move(record));
    return status;
}

bool CKvUserCatalogue::WriteBackList(List& files, const std::string& path, const char* targetName,
                                     const Writer& writer, const std::vector<const void*>& entries,
                                     std::string& message)
{
    CKvUserCatalogue* record = nullptr;
    for (const auto& r : files)
        if (record == nullptr && r->GetPath() == path)
            record = r.get();
    if (record == nullptr) {
        files.push_back(std::make_unique<CKvUserCatalogue>(path, targetName, writer));
        record = files.back().get();
        if (GxrTarget* target = record->Load())
            for (const GxrSection& section : target->sections)
                record->KeepSection(section, std::string());
        record->FinishLoad();
    }
    std::vector<const void*> added;
    for (const void* entry : entries) {
        bool fromFile = false;
        for (const auto& r : files)
            fromFile = fromFile || r->Contains(entry);
        if (!fromFile)
            added.push_back(entry);
    }
    const std::unordered_set<const void*> live(entries.begin(), entries.end());
    return record->WriteBack([&live](const void* entry) { return live.count(entry) != 0; }, added, message);
}

bool CKvUserCatalogue::CheckSection(const GxrSection& section, const std::vector<SKeywordRule>& rules,
                                    std::string& problem)
{
    std::set<std::string> seen;
    for (const GxrKeyword& keyword : section.keywords) {
        const std::string where = std::to_string(keyword.line) + ": ";
        const SKeywordRule* rule = nullptr;
        for (const SKeywordRule& r : rules)
            if (r.name == keyword.name)
                rule = &r;
        if (rule == nullptr) {
            problem = where + "keyword '" + keyword.name + "' is not known in section '" + section.name + "'";
            return false;
        }
        if (!seen.insert(keyword.name).second) {
            problem = where + "keyword '" + keyword.name + "' is given twice";
            return false;
        }
        const int n = static_cast<int>(keyword.params.size());
        if (n < rule->minParams || n > rule->maxParams) {
            problem = where + "keyword '" + keyword.name + "' takes " +
                      (rule->minParams == rule->maxParams ? std::to_string(rule->minParams)
                                                          : std::to_string(rule->minParams) + " to " +
                                                                std::to_string(rule->maxParams)) +
                      (rule->maxParams == 1 ? " value" : " values") + ", not " + std::to_string(n);
            return false;
        }
        for (const GxrParam& param : keyword.params) {
            if (param.isString != rule->isString) {
                problem = where + "keyword '" + keyword.name + "' takes " + (rule->isString ? "a string" : "a number") +
                          ", not " + (param.isString ? "the string \"" : "the number ") + param.text +
                          (param.isString ? "\"" : "");
                return false;
            }
        }
    }
    return true;
}
