#include "Platform/FileReference.h"

#include "Platform/FileStream.h"
#include "Platform/StringServices.h"
#include "Platform/URL.h"
#include "System/Status.h"

#include <atomic>
#include <cstdint>
#include <cstring>
#include <memory>

namespace KORVA::PLATFORM
{
class CFURL
{
public:
    explicit CFURL(URLRef url) : mURL(std::move(url))
    {
        if (std::optional<std::u16string> const text = mURL->AbsoluteString())
            mText = ToUTF8(*text).value_or(std::string());
    }

    URL const& Get() const { return *mURL; }
    std::string const& Text() const { return mText; }
    void Retain() const { ++mReferences; }
    void Release() const
    {
        if (--mReferences == 0)
            delete this;
    }

private:
    ~CFURL() = default;

    URLRef mURL;
    std::string mText;
    mutable std::atomic<int> mReferences{1};
};

namespace
{
/// What stands in an `FSRef`.
struct Reference
{
    std::uint64_t device;
    std::uint64_t number;
    char path[4096];
};
static_assert(sizeof(Reference) == sizeof(FSRef));

CFURLRef NewURL(URLRef url) { return url ? new CFURL(std::move(url)) : nullptr; }

std::unique_ptr<PathString> SystemPath(CFURLRef url)
{
    std::optional<std::u16string> const path = CFURLCopyFileSystemPath(url);
    return path ? PathString::From(*path) : nullptr;
}
} // namespace

CFURLRef CFURLCreateWithFileSystemPath(std::u16string_view path, bool isDirectory)
{
    return NewURL(URL::FromFilePath(path, isDirectory));
}

CFURLRef CFURLCreateWithString(std::u16string_view text) { return NewURL(URL::FromString(text)); }

CFURLRef CFURLCreateFromFSRef(FSRef const& ref)
{
    Reference reference;
    std::memcpy(&reference, &ref, sizeof reference);
    // A reference that nobody filled may hold anything.
    if (!std::memchr(reference.path, '\0', sizeof reference.path))
        return nullptr;
    SYSTEM::Status status;
    if (SYSTEM::ReadStatusOfLink(reference.path, status) != 0 ||
        status.identity != SYSTEM::FileIdentity{reference.device, reference.number})
        return nullptr;
    std::optional<std::u16string> const path = FromUTF8(reference.path);
    return path ? CFURLCreateWithFileSystemPath(*path, status.kind == SYSTEM::FileKind::kDirectory) : nullptr;
}

void CFRetain(CFURLRef url) { url->Retain(); }

void CFRelease(CFURLRef url) { url->Release(); }

std::optional<std::u16string> CFURLCopyFileSystemPath(CFURLRef url) { return url->Get().Path(); }

std::string const& CFURLGetString(CFURLRef url) { return url->Text(); }

bool CFURLGetFSRef(CFURLRef url, FSRef& ref)
{
    std::unique_ptr<PathString> const path = SystemPath(url);
    SYSTEM::Status status;
    Reference reference{};
    if (!path || std::strlen(path->FileSystemRepresentation()) >= sizeof reference.path ||
        SYSTEM::ReadStatusOfLink(path->FileSystemRepresentation(), status) != 0)
        return false;
    reference.device = status.identity.device;
    reference.number = status.identity.number;
    std::memcpy(reference.path, path->FileSystemRepresentation(),
                std::strlen(path->FileSystemRepresentation()) + 1);
    std::memcpy(&ref, &reference, sizeof ref);
    return true;
}
} // namespace KORVA::PLATFORM
