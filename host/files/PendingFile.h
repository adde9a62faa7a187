#ifndef FENN_HOST_FILES_PENDINGFILE_H
#define FENN_HOST_FILES_PENDINGFILE_H

#include <string>

namespace krige
{

/// The place of a file that appears whole or not at all: whoever writes it does so under a temporary name beside it,
/// and commit renames. An object that is destroyed without commit removes the temporary file, and so do SIGINT, SIGTERM
/// and SIGHUP. Until commit the path keeps its old content.
///
/// A symbolic link stays: the file that it points to is replaced, and keeps who may read it.
///
/// Errors are InputError. At most 24 objects at a time, on one thread.
class PendingFile
{
public:
    /// Chooses the temporary name; nothing exists there yet. ending: what it must end in, for formats that go by that.
    /// Throws when the path is a folder or write-protected.
    explicit PendingFile(const std::string& path_, const std::string& ending = "");

    /// A further file of the same set: the names of the first one but for what they end in. May never come to be.
    PendingFile(const PendingFile& first, const std::string& oldEnding, const std::string& ending);

    PendingFile(const PendingFile& other) = delete;
    PendingFile& operator=(const PendingFile& other) = delete;
    ~PendingFile();

    /// Where to write.
    const std::string& getTemporaryPath() const
    {
        return temporaryPath;
    }

    /// Whether something stands at the path, which commit replaces.
    bool replaces() const;

    /// Gives the temporary file the permissions of the file that it replaces; commit does so too.
    void keepPermissions() const;

    /// Makes the file appear; the last call.
    void commit();

private:
    void reserve();
    void release();

    std::string path;          // as given, for messages
    std::string finalPath;     // where the rename goes
    std::string temporaryPath; // beside it
    int slot = -1;             // in the signal handler's list
};

} // namespace krige

#endif
