/// Loaded tables, shared by the documents that separate with the same file.
///
/// A document that ends does not free its table, so something else has to own it: a host may print
/// ten thousand documents.
#pragma once

#include "colour/EightColourLUT.h"
#include <chrono>
#include <ctime>
#include <list>
#include <memory>
#include <mutex>
#include <sys/types.h>

/// What tells one state of one file from every other.
struct FileStamp {
    dev_t device;
    ino_t inode;
    off_t size;
    timespec modified, changed;

    bool operator==(const FileStamp &other) const;
};

/// Any thread.
class TableCache {
public:
    /// Tables that are kept for later though no document uses them.
    static constexpr size_t kCapacity = 8;

    /// A file that has changed within the last `settling` may change again without its times
    /// showing it: its table serves one document only.
    explicit TableCache(std::chrono::nanoseconds settling = std::chrono::seconds(2))
        : mSettling(settling) {}

    /// The table of a profile, loaded unless the same state of the file has been loaded before.
    /// Null when it cannot be loaded. To be given back with Release.
    [[nodiscard]] EightColourLUT *Acquire(CFURLRef url);

    /// Tells that a user of the table has ended. Null and tables of others are ignored.
    void Release(const EightColourLUT *table);

    /// Tables held now.
    size_t Size() const;

private:
    struct FreeTable {
        void operator()(EightColourLUT *table) const { ReleaseEightColourLUT(table); }
    };
    struct Entry {
        std::unique_ptr<EightColourLUT, FreeTable> table;
        FileStamp stamp;
        bool reusable;
        int users;
    };

    EightColourLUT *Load(CFURLRef url, const std::string &path, const FileStamp &stamp);
    bool HasSettled(const FileStamp &stamp) const;
    void DropUnused();

    const std::chrono::nanoseconds mSettling;
    mutable std::mutex mMutex;
    std::list<Entry> mEntries; ///< the last used first
};
