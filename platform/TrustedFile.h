#pragma once

#include "platform/base/NonCopyable.h"

#include <memory>
#include <string>

namespace platform {

/// A regular file, open for reading, that no user other than this one and root can replace or
/// write to. Whatever happens at its path later, the object keeps referring to the same file; its
/// owner can still change the contents. Thread-safe.
class TrustedFile : NonCopyable {
  public:
    /// Opens the file at the absolute path @p path. Returns null and writes why to @p reason if the
    /// file cannot be opened, or if for the file or any folder above it, up to "/",
    /// - the entry is a symbolic link,
    /// - the owner is neither this user nor root, or
    /// - other users can write to it. Exempt are folders of root with the sticky bit, such as /tmp.
    ///
    /// A group that can write counts as other users unless it is this user's or root's private
    /// group: the user's primary group, with the user's name and no other members. If an access
    /// control list is set, it counts as other users too.
    static std::shared_ptr<const TrustedFile> open(const std::string& path, std::string& reason);
    /// Takes ownership of @p descriptor.
    TrustedFile(std::string path, int descriptor);
    ~TrustedFile();

    const std::string& path() const { return path_; }
    int descriptor() const { return descriptor_; }

  private:
    std::string path_;
    int descriptor_;
};

} // namespace platform
