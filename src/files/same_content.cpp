#include "files/same_content.h"

#include <windows.h>

#include <bcrypt.h>

#include <algorithm>
#include <array>
#include <span>

#include "app/base/distant_file.h"
#include "app/base/handles.h"
#include "app/base/paths.h"
#include "helpers/system/system_library.h"
#include "plugin/file_stamp.h"

namespace tessary {
namespace {

constexpr size_t kPieceSize = 64u << 10;

// A file in pieces, from its beginning to its end.
class FilePieces {
  public:
    explicit FilePieces(const std::wstring& path)
        : file_(CreateFileW(ExtendedPath(path).c_str(), GENERIC_READ,
                            FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                            OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr)) {}

    // No larger than `most`. Empty behind the last one; nothing when the file cannot be read.
    std::optional<std::span<const uint8_t>> Next(size_t most = kPieceSize) {
        DWORD size = 0;
        const auto wanted = static_cast<DWORD>(std::min(most, piece_.size()));
        if (!file_ || !ReadFile(file_.Get(), piece_.data(), wanted, &size, nullptr)) {
            return std::nullopt;
        }
        return std::span<const uint8_t>(piece_).first(size);
    }

  private:
    UniqueFile file_;
    std::vector<uint8_t> piece_ = std::vector<uint8_t>(kPieceSize);
};

// The system's hashes. What its library lacks is null, and then so is `open`.
struct HashFunctions {
    HashFunctions() {
        const bool isWhole = Find("BCryptCreateHash", create) && Find("BCryptHashData", add) &&
                             Find("BCryptFinishHash", finish) &&
                             Find("BCryptDestroyHash", destroy) &&
                             Find("BCryptCloseAlgorithmProvider", close);
        if (isWhole) Find("BCryptOpenAlgorithmProvider", open);
    }

    template <typename Function>
    static bool Find(const char* name, Function& function) {
        function = SystemFunction<Function>(L"bcrypt.dll", name);
        return function != nullptr;
    }

    decltype(&BCryptOpenAlgorithmProvider) open = nullptr;
    decltype(&BCryptCloseAlgorithmProvider) close = nullptr;
    decltype(&BCryptCreateHash) create = nullptr;
    decltype(&BCryptHashData) add = nullptr;
    decltype(&BCryptFinishHash) finish = nullptr;
    decltype(&BCryptDestroyHash) destroy = nullptr;
};

const HashFunctions& Hashes() {
    static const HashFunctions functions;
    return functions;
}

// The system's hash function, which goes on from piece to piece.
class Digest {
  public:
    Digest() {
        const auto open = Hashes().open;
        if (open == nullptr || open(&provider_, BCRYPT_SHA256_ALGORITHM, nullptr, 0) != 0) return;
        Hashes().create(provider_, &hash_, nullptr, 0, nullptr, 0, 0);
    }
    Digest(const Digest&) = delete;
    Digest& operator=(const Digest&) = delete;
    ~Digest() {
        if (hash_ != nullptr) Hashes().destroy(hash_);
        if (provider_ != nullptr) Hashes().close(provider_, 0);
    }

    bool Add(std::span<const uint8_t> bytes) {
        return hash_ != nullptr && Hashes().add(hash_, const_cast<uint8_t*>(bytes.data()),
                                                static_cast<ULONG>(bytes.size()), 0) == 0;
    }
    // Empty when the system has none.
    std::vector<uint8_t> Finish() {
        std::vector<uint8_t> digest(32);
        const bool isDone =
            hash_ != nullptr &&
            Hashes().finish(hash_, digest.data(), static_cast<ULONG>(digest.size()), 0) == 0;
        return isDone ? digest : std::vector<uint8_t>();
    }

  private:
    BCRYPT_ALG_HANDLE provider_ = nullptr;
    BCRYPT_HASH_HANDLE hash_ = nullptr;
};

}  // namespace

bool HaveSameContent(const std::wstring& one, const std::wstring& other) {
    const std::optional<FileStamp> stamp = StampOf(one);
    const std::optional<FileStamp> otherStamp = StampOf(other);
    if (!stamp || !otherStamp || stamp->size != otherStamp->size) return false;
    if (stamp->size == 0) return true;
    if (IsNotOnThisDisk(one) || IsNotOnThisDisk(other)) return false;
    FilePieces pieces(one);
    FilePieces otherPieces(other);
    for (;;) {
        const auto piece = pieces.Next();
        const auto otherPiece = otherPieces.Next();
        if (!piece || !otherPiece || !std::ranges::equal(*piece, *otherPiece)) return false;
        if (piece->empty()) return true;
    }
}

bool HaveSameContent(const FileBytes& bytes, const std::wstring& path) {
    const std::optional<FileStamp> stamp = StampOf(path);
    if (!stamp || stamp->size != bytes.Size() || IsNotOnThisDisk(path)) return false;
    FilePieces pieces(path);
    for (const std::vector<uint8_t>& own : bytes.Pieces()) {
        for (std::span<const uint8_t> rest = own; !rest.empty();) {
            const auto piece = pieces.Next(rest.size());
            if (!piece || piece->empty() || !std::ranges::equal(*piece, rest.first(piece->size())))
                return false;
            rest = rest.subspan(piece->size());
        }
    }
    return true;
}

std::optional<KnownContents::Content> KnownContents::ContentOf(const std::wstring& path) {
    const std::optional<FileStamp> stamp = StampOf(path);
    if (!stamp) return std::nullopt;
    FilePieces pieces(path);
    Digest digest;
    for (;;) {
        const auto piece = pieces.Next();
        if (!piece || (!piece->empty() && !digest.Add(*piece))) return std::nullopt;
        if (piece->empty()) break;
    }
    Content content{stamp->size, digest.Finish()};
    if (content.digest.empty()) return std::nullopt;
    return content;
}

void KnownContents::Add(const std::wstring& path) {
    if (std::optional<Content> content = ContentOf(path)) contents_.push_back(std::move(*content));
}

bool KnownContents::Holds(const std::wstring& path) const {
    const std::optional<FileStamp> stamp = StampOf(path);
    const auto isAsLarge = [&](const Content& content) { return content.size == stamp->size; };
    if (!stamp || std::ranges::none_of(contents_, isAsLarge)) return false;
    const std::optional<Content> content = ContentOf(path);
    return content && std::ranges::any_of(contents_, [&](const Content& known) {
               return known.size == content->size && known.digest == content->digest;
           });
}

}  // namespace tessary
