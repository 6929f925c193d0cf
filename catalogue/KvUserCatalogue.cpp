#include "catalogue/KvUserCatalogue.h"

#include "paramfile/Gxr.h"
#include "paramfile/ParamFileWriter.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>
#include <set>
#include <sys/stat.h>
#include <unordered_map>

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

// The name of an entry's section: the first string of the keyword that names entries.
std::string NameOf(const GxrSection& section, const std::string& keyword)
{
    for (const GxrKeyword& k : section.keywords)
        if (k.name == keyword && !k.params.empty() && k.params.front().isString)
            return k.params.front().text;
    return std::string();
}

} // namespace

CKvUserCatalogue::CKvUserCatalogue(const std::string& path, const SFormat& format) : m_path(path), m_format(format) {}

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
        if (main == nullptr && target.name == m_format.targetName) {
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

CKvUserCatalogue::SItem CKvUserCatalogue::_entryItem(const void* entry) const
{
    GxrTarget scratch{m_format.targetName, {}, 0};
    m_format.writer(entry, &scratch);
    SItem item;
    item.entry = entry;
    for (const GxrSection& section : scratch.sections)
        item.text += CParamFileWriter::SectionText(section);
    if (!scratch.sections.empty())
        item.section = scratch.sections.front();
    item.key = "=" + NameOf(item.section, m_format.nameKeyword);
    return item;
}

std::string CKvUserCatalogue::_text(const void* entry) const
{
    return _entryItem(entry).text;
}

int CKvUserCatalogue::_sectionItem(const GxrSection& section, SItem& item, std::string& problem) const
{
    // An entry is compared by what the list makes of it, so that a section
    // written by hand (other keyword order, Centre_dms for Centre) and the same
    // entry written back by another process are the same version. A section the
    // list does not read is its own key: it is never changed by a session.
    GxrTarget scratch{m_format.targetName, {}, 0};
    const int kind = m_format.reader ? m_format.reader(section, &scratch, problem) : 0;
    item.entry = nullptr;
    item.section = section;
    if (kind > 0 && !scratch.sections.empty()) {
        item.text = CParamFileWriter::SectionText(scratch.sections.front());
        item.key = "=" + NameOf(scratch.sections.front(), m_format.nameKeyword);
    } else {
        item.text = CParamFileWriter::SectionText(section);
        item.key = "#" + item.text;
    }
    return kind;
}

void CKvUserCatalogue::AddEntry(const void* entry)
{
    m_layout.push_back(_entryItem(entry));
    m_members.insert(entry);
}

void CKvUserCatalogue::KeepSection(const GxrSection& section, const std::string& problem)
{
    SItem item;
    std::string ignored;
    _sectionItem(section, item, ignored);
    m_layout.push_back(std::move(item));
    if (!problem.empty())
        _note(problem);
}

void CKvUserCatalogue::Forget(const void* entry)
{
    // A deleted entry leaves its place: a new entry at the same address is new.
    m_members.erase(entry);
    m_outside.erase(entry);
    m_rescued.erase(entry);
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
        GxrTarget* target = gxrTargetByNameNum(file, m_format.targetName.c_str(), 1);
        if (target == nullptr)
            target = gxrAddTarget(file, m_format.targetName.c_str());
        for (const void* entry : entries)
            m_format.writer(entry, target);
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

bool CKvUserCatalogue::_reread(SOnDisk& disk, std::string& problem) const
{
    struct stat st;
    if (::lstat(m_path.c_str(), &st) != 0 && errno == ENOENT)
        return true; // removed since: an empty catalogue, into which the session's entries go
    GxrFile* file = gxrLoadFile(m_path.c_str());
    if (file == nullptr) {
        problem = gxrGetErrorMessageGlb();
        gxrGetErrorGlb();
        return false;
    }
    bool ok = true;
    for (const GxrTarget& target : file->targets) {
        if (disk.mainIndex >= 0 || target.name != m_format.targetName) {
            disk.targets.push_back(target);
            continue;
        }
        disk.mainIndex = static_cast<int>(disk.targets.size());
        disk.targets.push_back(GxrTarget{target.name, {}, target.line});
        for (const GxrSection& section : target.sections) {
            SItem item;
            std::string what;
            if (_sectionItem(section, item, what) < 0 && ok) {
                problem = m_path + ":" + what;
                ok = false;
            }
            disk.items.push_back(std::move(item));
        }
    }
    gxrClose(file);
    return ok;
}

void CKvUserCatalogue::_merge(const std::vector<SItem>& ours, const std::vector<SItem>& theirs, SMerge& result) const
{
    // Versions are compared name by name: base is what this session read (or
    // last wrote), ours what it holds now, theirs what the file holds now. A
    // name only one side changed takes that side's sections; a name both
    // changed alike is taken once; a name both changed differently keeps the
    // file's sections, and this session's own versions of it are set aside.
    using Group = std::vector<const SItem*>;
    std::unordered_map<std::string, Group> base, mine, disk;
    for (const SItem& item : m_layout)
        base[item.key].push_back(&item);
    for (const SItem& item : ours)
        mine[item.key].push_back(&item);
    for (const SItem& item : theirs)
        disk[item.key].push_back(&item);
    static const Group none;
    const auto group = [](const std::unordered_map<std::string, Group>& groups,
                          const std::string& key) -> const Group& {
        const auto found = groups.find(key);
        return found == groups.end() ? none : found->second;
    };
    const auto same = [](const Group& a, const Group& b) {
        if (a.size() != b.size())
            return false;
        for (size_t i = 0; i < a.size(); ++i)
            if (a[i]->text != b[i]->text)
                return false;
        return true;
    };
    const auto holds = [](const Group& g, const std::string& text) {
        for (const SItem* item : g)
            if (item->text == text)
                return true;
        return false;
    };

    std::unordered_map<std::string, bool> decided;
    std::unordered_set<const void*> aside;
    const auto oursWins = [&](const std::string& key) {
        const auto known = decided.find(key);
        if (known != decided.end())
            return known->second;
        const Group& b = group(base, key);
        const Group& m = group(mine, key);
        const Group& d = group(disk, key);
        const bool wins = same(d, b) || same(m, d);
        if (!wins && !same(m, b)) {
            const std::string name = "'" + key.substr(1) + "'";
            bool clash = false;
            for (const SItem* item : m)
                if (item->entry != nullptr && !holds(b, item->text) && !holds(d, item->text)) {
                    aside.insert(item->entry);
                    clash = true;
                }
            // An entry of the file that this session no longer holds was deleted
            // here (an edited one is still held, with another text).
            bool deleted = false;
            for (const SItem* item : b) {
                bool held = item->entry == nullptr;
                for (const SItem* mineItem : m)
                    held = held || mineItem->entry == item->entry;
                deleted = deleted || !held;
            }
            if (clash)
                result.clashes.push_back(name);
            if (deleted && !d.empty())
                result.undeleted.push_back(name);
        }
        decided.emplace(key, wins);
        return wins;
    };

    // The file's order, a name's sections of this session at its first place,
    // then the names new to the file in this session's order.
    std::unordered_set<std::string> placed;
    for (const SItem& item : theirs) {
        if (!oursWins(item.key))
            result.merged.push_back(item);
        else if (placed.insert(item.key).second)
            for (const SItem* mineItem : group(mine, item.key))
                result.merged.push_back(*mineItem);
    }
    for (const SItem& item : ours)
        if (oursWins(item.key) && placed.insert(item.key).second)
            for (const SItem* mineItem : group(mine, item.key))
                result.merged.push_back(*mineItem);
    for (const SItem& item : ours)
        if (aside.count(item.entry) != 0)
            result.aside.push_back(item.entry);
}

bool CKvUserCatalogue::WriteBack(const std::vector<const void*>& live, const std::vector<const void*>& added,
                                 std::string& message)
{
    message.clear();
    // Writers of the same catalogue in other processes wait here, so that
    // reading the file as it is now, merging and replacing it are one step.
    SDirectoryLock lock(m_path);
    const std::unordered_set<const void*> isLive(live.begin(), live.end());

    // This session's version of the main target: the file's sections as read,
    // with the entries' current values and without the deleted ones, then the
    // entries that a merge left out and that changed since, then the new ones.
    std::vector<SItem> ours;
    std::unordered_map<const void*, const std::string*> read; // the file's entries, with their text then
    bool changed = false;
    for (const SItem& item : m_layout) {
        if (item.entry == nullptr) {
            ours.push_back(item);
            continue;
        }
        if (m_members.count(item.entry) == 0 || isLive.count(item.entry) == 0) {
            changed = true;
            continue;
        }
        read.emplace(item.entry, &item.text);
        ours.push_back(_entryItem(item.entry));
        changed = changed || ours.back().text != item.text;
    }
    for (const void* entry : live) {
        const auto outside = m_outside.find(entry);
        if (outside == m_outside.end())
            continue;
        SItem now = _entryItem(entry);
        if (now.text == outside->second)
            continue; // as it was set aside or left out: not offered again
        ours.push_back(std::move(now));
        changed = true;
    }
    for (const void* entry : added) {
        ours.push_back(_entryItem(entry));
        changed = true;
    }
    // Nothing changed (a look-up marks the list modified too): the file, with
    // its comments and layout, stays exactly as the user wrote it.
    if (!changed && (m_stamp.exists || !m_layout.empty() || _stamp(m_path).exists))
        return true;

    std::string reason;
    SOnDisk disk;
    bool merging = false;
    if (m_bRejected) {
        reason = m_rejection;
    } else if (_stamp(m_path) == m_stamp) {
        disk.targets = m_targets;
        disk.mainIndex = m_mainIndex;
    } else {
        std::string problem;
        if (_reread(disk, problem))
            merging = true;
        else
            reason = m_path + " was changed by another program since it was read and cannot be merged: " + problem;
    }

    if (reason.empty()) {
        SMerge merge;
        if (merging)
            _merge(ours, disk.items, merge);
        else
            merge.merged = ours;

        GxrFile file;
        file.path = m_path;
        if (disk.mainIndex < 0) {
            disk.mainIndex = static_cast<int>(disk.targets.size());
            disk.targets.push_back(GxrTarget{m_format.targetName, {}, 0});
        }
        file.targets.assign(disk.targets.begin(), disk.targets.end());
        GxrTarget& main = file.targets[static_cast<size_t>(disk.mainIndex)];
        for (const SItem& item : merge.merged)
            main.sections.push_back(item.section);
        std::string error;
        if (CParamFileWriter::WriteAtomically(m_path, CParamFileWriter::ToText(file), error)) {
            m_stamp = _stamp(m_path);
            m_targets = std::move(disk.targets);
            m_mainIndex = disk.mainIndex;
            m_members.clear();
            for (SItem& item : merge.merged) {
                if (item.entry != nullptr) {
                    m_members.insert(item.entry);
                    m_outside.erase(item.entry);
                }
            }
            for (const SItem& item : ours)
                if (item.entry != nullptr && m_members.count(item.entry) == 0)
                    m_outside[item.entry] = item.text;
            m_layout = std::move(merge.merged);
            return _reportMerge(merge, message);
        }
        reason = error;
    }

    // The file stays as it is. Save what the session would otherwise lose: its
    // new entries and the entries it edited.
    std::vector<const void*> toSave;
    std::vector<std::pair<const void*, std::string>> texts;
    for (const SItem& item : ours) {
        if (item.entry == nullptr)
            continue;
        const auto before = read.find(item.entry);
        if (before != read.end() && *before->second == item.text)
            continue;
        const auto saved = m_rescued.find(item.entry);
        if (saved != m_rescued.end() && saved->second == item.text)
            continue;
        toSave.push_back(item.entry);
        texts.emplace_back(item.entry, item.text);
    }
    int deleted = 0;
    for (const SItem& item : m_layout)
        if (item.entry != nullptr && (m_members.count(item.entry) == 0 || isLive.count(item.entry) == 0))
            ++deleted;
    if (toSave.empty() && deleted == 0)
        return true; // nothing of the session is missing from the file as it stands
    message = m_path + " was not written: " + reason;
    bool saved = true;
    if (!toSave.empty()) {
        std::string rescuePath, error;
        if (_rescue(toSave, rescuePath, error)) {
            message += "\nthe session's " + std::to_string(toSave.size()) + " new or changed entr" +
                       (toSave.size() == 1 ? "y was" : "ies were") + " saved in " + rescuePath;
            for (const auto& text : texts)
                m_rescued[text.first] = text.second;
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

bool CKvUserCatalogue::_reportMerge(const SMerge& merge, std::string& message)
{
    const auto list = [](const std::vector<std::string>& names) {
        std::string text;
        for (const std::string& name : names)
            text += (text.empty() ? "" : ", ") + name;
        return text;
    };
    bool saved = true;
    if (!merge.clashes.empty()) {
        message = m_path + ": " + list(merge.clashes) + (merge.clashes.size() == 1 ? " was" : " were") +
                  " changed both by this session and by another since it was read; the file keeps the version saved "
                  "first";
        std::string rescuePath, error;
        if (_rescue(merge.aside, rescuePath, error)) {
            message += "\nthis session's " + std::to_string(merge.aside.size()) +
                       (merge.aside.size() == 1 ? " version was" : " versions were") + " saved in " + rescuePath;
            for (const void* entry : merge.aside)
                m_rescued[entry] = _text(entry);
        } else {
            message += "\nthis session's " + std::to_string(merge.aside.size()) +
                       (merge.aside.size() == 1 ? " version is" : " versions are") + " lost: " + error;
            saved = false;
        }
    }
    if (!merge.undeleted.empty()) {
        message += std::string(message.empty() ? "" : "\n") + m_path + ": the deletion of " + list(merge.undeleted) +
                   " is not saved: another session changed " + (merge.undeleted.size() == 1 ? "it" : "them") +
                   " since it was read";
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

bool CKvUserCatalogue::WriteBackList(List& files, const std::string& path, const SFormat& format,
                                     const std::vector<const void*>& entries, std::string& message)
{
    CKvUserCatalogue* record = nullptr;
    for (const auto& r : files)
        if (record == nullptr && r->GetPath() == path)
            record = r.get();
    if (record == nullptr) {
        files.push_back(std::make_unique<CKvUserCatalogue>(path, format));
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
    return record->WriteBack(entries, added, message);
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
