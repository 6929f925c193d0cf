#ifndef KVCART_CATALOGUE_KVUSERCATALOGUE_H
#define KVCART_CATALOGUE_KVUSERCATALOGUE_H

#include "paramfile/ParamTree.h"

#include <functional>
#include <memory>
#include <string>
#include <sys/types.h>
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
// A file that did not load cleanly (unreadable, malformed, an entry with a
// keyword or value the library does not understand), or that another program
// changed after it was read, is never written: it stays byte for byte as it
// was. The entries of the session that would otherwise be lost (new ones and
// edited ones) go to a rescue file beside it, "<name>.unsaved.gxr", which is
// appended to, never overwritten.
class CKvUserCatalogue
{
public:
    // Writes one entry as a section of target; false when it could not.
    using Writer = std::function<bool(const void* entry, GxrTarget* target)>;

    // A keyword that a section may hold, with the kind and number of its values.
    struct SKeywordRule
    {
        std::string name;
        bool isString;
        int minParams;
        int maxParams;
    };

    CKvUserCatalogue(const std::string& path, const char* targetName, Writer writer);
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
    bool Contains(const void* entry) const { return m_members.count(entry) != 0; }

    // Writes back: the file's own entries that isLive accepts, with their
    // current values, then added. A rejected or changed file is left as it is
    // and the entries that would be lost go to the rescue file. Returns false,
    // with message, when anything of the session could not be saved. The added
    // entries belong to the file (or its rescue) afterwards.
    bool WriteBack(const std::function<bool(const void*)>& isLive, const std::vector<const void*>& added,
                   std::string& message);

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
    static bool WriteBackList(List& files, const std::string& path, const char* targetName, const Writer& writer,
                              const std::vector<const void*>& entries, std::string& message);

    // Checks every keyword line of a section against the rules: known names,
    // each at most once, values of the right kind and count. Returns false with
    // "line: what" in problem at the first violation.
    static bool CheckSection(const GxrSection& section, const std::vector<SKeywordRule>& rules, std::string& problem);
    // The rescue file's name for a catalogue file: "dir/custom_x.gxr" -> "dir/custom_x.unsaved.gxr".
    static std::string RescueName(const std::string& path, int attempt);

private:
    struct SItem
    {
        const void* entry;    // null for a kept section
        std::string snapshot; // the entry's text when read, to tell an edited entry
        GxrSection section;   // the kept section
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

    std::string _text(const void* entry) const;
    void _note(const std::string& problem);
    static SStamp _stamp(const std::string& path);
    bool _rescue(const std::vector<const void*>& entries, std::string& rescuePath, std::string& error);

    std::string m_path;
    std::string m_targetName;
    Writer m_writer;
    GxrFile* m_pLoaded = nullptr;
    int m_status = 0;
    bool m_bRejected = false;
    std::string m_rejection; // the first reason
    std::string m_problems;
    SStamp m_stamp;
    std::vector<GxrTarget> m_targets; // the file's targets; the main one's sections are rebuilt
    int m_mainIndex = -1;
    std::vector<SItem> m_layout;
    std::unordered_set<const void*> m_members;
    std::vector<std::pair<const void*, std::string>> m_rescued; // saved to the rescue file already
};

#endif
