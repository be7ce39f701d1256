#include "platform/Workspace.h"
#include "platform/posix/Defaults.h"
#include "platform/posix/OpenURL.h"
#include "platform/posix/Trash.h"

namespace platform::posix {
namespace {

/// The workspace of a program without a desktop: it has a Trash and URLs to open, and
/// nothing that could show files.
class PosixWorkspace final : public Workspace {
  public:
    bool selectFile(const std::string&, const std::string&) override { return false; }
    bool openFile(const std::string&) override { return false; }
    bool openURL(const std::string& url) override { return posix::openURL(url); }
    bool recycle(const std::string& path) override { return moveToTrash(path); }
};

} // namespace

Workspace& defaultWorkspace() {
    static PosixWorkspace workspace;
    return workspace;
}

} // namespace platform::posix
