#ifndef KVCART_CATALOGUE_KVUSERCATALOGUE_H
#define KVCART_CATALOGUE_KVUSERCATALOGUE_H

#include "paramfile/ParamTree.h"

#include <functional>
#include <memory>
#include <string>
#include <sys/types.h>
#include <unordered_map>
#include <unordered_set>
#include <vector>

// One user catalogue file (custom_projection.gxr, custom_ellipsoid.gxr) as it
// was read, and how it is written back without losing anything of the user's.
//
// While the file is read, the owning list records every entry it took from the
// file's main target and every section it could not use, in file order; other
// targets are kept whole. Writing back rebuilds the file in that order with the
// entries' current values, the unusable sections and other targets unchanged,
// and the session's new entries at the end.
//
// Several processes may edit the same catalogue. Entries are known by their
// name (an ellipsoid by its ID). A writer holds a lock on the directory while it
// writes; when another one has replaced the file since this session read it,
// the file is read again under the lock and the session's changes (additions,
// edits, deletions) are merged into it, name by name: what only one side
// changed is taken from that side. When both changed the same name differently,
// the version already in the file stays (the first to save wins) and this
// session's version goes to the rescue file; a deletion of an entry the other
// side changed is not made. Both are reported.
//
// A file that did not load cleanly (unreadable, malformed, an entry with a
// keyword or value the library does not understand), also when it is read
// again for a merge, is never written: it stays byte for byte as it was. The
// entries of the session that would otherwise be lost (new ones and edited
// ones) go to a rescue file beside it, "<name>.unsaved.gxr", which is appended
// to, never overwritten, and never read back.
class CKvUserCatalogue
{
public:
    // Writes one entry as a section of target; false when it could not.
    using Writer = std::function<bool(const void* entry, GxrTarget* target)>;
    // Reads a section of the main target as the owning list reads it and writes
    // the entry it makes to target: 1 for an entry, 0 for a section the list
    // does not read (kept as it stands), -1 for one that keeps the file from
    // being written ("line: what" in problem).
    using Reader = std::function<int(const GxrSection& section, GxrTarget* target, std::string& problem)>;

    // How a list's entries are stored in its file.
    struct SFormat
    {
        std::string targetName;  // the target whose sections are the entries
        std::string nameKeyword; // the string keyword that names an entry
        Writer writer;
        Reader reader;
    };

    // A keyword that a section may hold, with the kind and number of its values.
    struct SKeywordRule
    {
        std::string name;
        bool isString;
        int minParams;
        int maxParams;
    };

    CKvUserCatalogue(const std::string& path, const SFormat& format);
    CKvUserCatalogue(const CKvUserCatalogue&) = delete;
    CKvUserCatalogue& operator=(const CKvUserCatalogue&) = delete;
    virtual ~CKvUserCatalogue();

    // Reads the file. Returns its main target (the first of the target name) for
    // the caller to take entries from, or null when there is nothing to read: the
    // file is missing (it will be created), or it could not be read or parsed (it
    // is rejected). The tree lives until FinishLoad.
    GxrTarget* Load();
    // The entry read from the current section, kept at its place.
    void AddEntry(const void* entry);
    // A section of the main target that the caller cannot use: written back as it stands.
    void KeepSection(const GxrSection& section, const std::string& problem);
    // A problem that makes the file unwritable for this process.
    void Reject(const std::string& problem);
    // Frees the parsed tree; what is kept has been copied.
    void FinishLoad();

    // The entry no longer exists (deleted by the host).
    void Forget(const void* entry);
    // Whether the entry came from this file (or was saved through it before).
    bool Contains(const void* entry) const { return m_members.count(entry) != 0 || m_outside.count(entry) != 0; }

    // Writes back: the file's own entries that are still live (the list's
    // entries, in list order), with their current values, then added, merged
    // into the file as another process left it. A rejected file, or one that no longer reads cleanly, is left as it
    // is and the entries that would be lost go to the rescue file. Returns
    // false when anything of the session is lost (neither in the file nor in
    // the rescue file); message is empty when everything is in the file, and
    // says what went elsewhere otherwise. The added entries belong to the file
    // (or its rescue) afterwards.
    bool WriteBack(const std::vector<const void*>& live, const std::vector<const void*>& added, std::string& message);

    const std::string& GetPath() const { return m_path; }
    // The parameter-file status of the read: GXR_OK, or why nothing was read.
    int GetStatus() const { return m_status; }
    bool IsRejected() const { return m_bRejected; }
    // Every problem met while reading, one "file:line: what" per line.
    const std::string& GetProblems() const { return m_problems; }

    // The user files that a list has read, in order. The same file read twice
    // has two records; only the first is written back.
    using List = std::vector<std::unique_ptr<CKvUserCatalogue>>;
    // Ends a list's read of one file: frees the parsed tree, adds the file's
    // problems to problems, keeps the record in files when it is a user file
    // (keep), and returns the parameter-file status of the read.
    static int FinishRead(List& files, std::unique_ptr<CKvUserCatalogue> record, bool keep, std::string& problems);
    // Writes a list's custom entries (in list order) back to path through the
    // first record of that file, or a new one for a file never read, whose
    // contents are then kept as they stand. Entries that no record holds are the
    // session's new ones.
    static bool WriteBackList(List& files, const std::string& path, const SFormat& format,
                              const std::vector<const void*>& entries, std::string& message);

    // Checks every keyword line of a section against the rules: known names,
    // each at most once, values of the right kind and count. Returns false with
    // "line: what" in problem at the first violation.
    static bool CheckSection(const GxrSection& section, const std::vector<SKeywordRule>& rules, std::string& problem);
    // The rescue file's name for a catalogue file: "dir/custom_x.gxr" -> "dir/custom_x.unsaved.gxr".
    static std::string RescueName(const std::string& path, int attempt);

private:
    // One section of the main target in a version of the file.
    struct SItem
    {
        const void* entry = nullptr; // the session's entry, or null for a section kept as it stands
        std::string key;             // what the section is known by in a merge
        std::string text;            // its text as the list writes it, to tell versions apart
        GxrSection section;          // what is written
    };
    struct SStamp
    {
        bool exists = false;
        dev_t device = 0;
        ino_t inode = 0;
        off_t size = 0;
        long long mtimeNs = 0;
        bool operator==(const SStamp& o) const
        {
            return exists == o.exists && device == o.device && inode == o.inode && size == o.size &&
                   mtimeNs == o.mtimeNs;
        }
    };
    // The file as it is on disk now, read again for a merge.
    struct SOnDisk
    {
        std::vector<SItem> items;
        std::vector<GxrTarget> targets; // the main one without its sections
        int mainIndex = -1;
    };

    // The outcome of merging this session's version into the file's.
    struct SMerge
    {
        std::vector<SItem> merged;
        std::vector<const void*> aside;     // this session's versions of names both sides changed
        std::vector<std::string> clashes;   // those names, quoted
        std::vector<std::string> undeleted; // names this session deleted and the other side changed
    };

    SItem _entryItem(const void* entry) const;
    void _merge(const std::vector<SItem>& ours, const std::vector<SItem>& theirs, SMerge& result) const;
    bool _reportMerge(const SMerge& merge, std::string& message);
    int _sectionItem(const GxrSection& section, SItem& item, std::string& problem) const;
    std::string _text(const void* entry) const;
    void _note(const std::string& problem);
    static SStamp _stamp(const std::string& path);
    bool _reread(SOnDisk& disk, std::string& problem) const;
    bool _rescue(const std::vector<const void*>& entries, std::string& rescuePath, std::string& error);

    std::string m_path;
    SFormat m_format;
    GxrFile* m_pLoaded = nullptr;
    int m_status = 0;
    bool m_bRejected = false;
    std::string m_rejection; // the first reason
    std::string m_problems;
    SStamp m_stamp;
    std::vector<GxrTarget> m_targets; // the file's targets; the main one's sections are rebuilt
    int m_mainIndex = -1;
    std::vector<SItem> m_layout; // the main target as the file holds it, as far as this session knows
    std::unordered_set<const void*> m_members;
    // Entries of the session that the file does not hold by a merge's decision,
    // with their text then: a version saved aside, or one another process
    // deleted or replaced. They are offered again only once they change.
    std::unordered_map<const void*, std::string> m_outside;
    std::unordered_map<const void*, std::string> m_rescued; // saved to the rescue file already, with that text
};

#endif
