#include "picture/ahead/thumb_packs.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <numeric>
#include <span>
#include <utility>
#include <vector>

#include "app/base/hash.h"
#include "app/base/paths.h"

namespace tessary {
namespace {

constexpr wchar_t kPattern[] = L"*.thumbs";
constexpr char kBegin[16] = "TessaryThumbs1\n";
constexpr uint32_t kMark = 0x31485454;  // of a record

constexpr uint64_t kPackSize = uint64_t{16} << 20;
constexpr uint64_t kFewestPacks = 4;  // within the budget
constexpr uint32_t kMostKey = 8192;   // units
constexpr uint32_t kMostSide = 4096;  // pixels

struct Head {
    uint32_t mark = kMark;
    uint32_t keyUnits = 0;
    uint32_t width = 0;
    uint32_t height = 0;
    uint64_t keyHash = 0;
    uint64_t check = 0;  // of key and rows
};

uint64_t StrideOf(uint32_t width) {
    return (uint64_t{width} * 3 + 3) / 4 * 4;
}
uint64_t RowBytes(const Head& head) {
    return StrideOf(head.width) * head.height;
}
uint64_t SizeOf(const Head& head) {
    return sizeof(Head) + head.keyUnits * sizeof(wchar_t) + RowBytes(head);
}

bool IsPlausible(const Head& head) {
    return head.mark == kMark && head.keyUnits <= kMostKey && head.width > 0 && head.height > 0 &&
           head.width <= kMostSide && head.height <= kMostSide;
}

uint64_t CheckOf(std::span<const uint8_t> bytes) {
    return HashOf(
        std::basic_string_view<char>(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
}

bool ReadAt(HANDLE file, uint64_t offset, void* bytes, DWORD size) {
    OVERLAPPED place{};
    place.Offset = static_cast<DWORD>(offset);
    place.OffsetHigh = static_cast<DWORD>(offset >> 32);
    DWORD done = 0;
    return ReadFile(file, bytes, size, &done, &place) && done == size;
}

bool WriteAt(HANDLE file, uint64_t offset, const void* bytes, DWORD size) {
    OVERLAPPED place{};
    place.Offset = static_cast<DWORD>(offset);
    place.OffsetHigh = static_cast<DWORD>(offset >> 32);
    DWORD done = 0;
    return WriteFile(file, bytes, size, &done, &place) && done == size;
}

}  // namespace

void ThumbPacks::SetBudget(uint64_t bytes) {
    const std::lock_guard lock(mutex_);
    budget_ = bytes;
}

// The names of packs begin with the time when they were.
void ThumbPacks::Open() {
    if (std::exchange(isOpen_, true) || folder_.empty()) return;
    std::vector<std::wstring> paths = FilesInFolder(folder_, kPattern);
    std::ranges::sort(paths);
    for (const std::wstring& path : paths) {
        Pack pack{
            .path = path,
            .file = UniqueFile(CreateFileW(
                path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                nullptr, OPEN_EXISTING, FILE_FLAG_RANDOM_ACCESS, nullptr))};
        char begin[sizeof(kBegin)];
        LARGE_INTEGER size{};
        if (!pack.file || !GetFileSizeEx(pack.file.Get(), &size)) continue;
        pack.size = static_cast<uint64_t>(size.QuadPart);
        if (!ReadAt(pack.file.Get(), 0, begin, sizeof(begin)) ||
            std::memcmp(begin, kBegin, sizeof(begin)) != 0) {
            continue;
        }
        packs_.push_back(std::move(pack));
        ReadHeads(std::prev(packs_.end()));
    }
    MakeRoom();
}

// Up to where it is torn.
void ThumbPacks::ReadHeads(std::list<Pack>::iterator pack) {
    Head head;
    for (uint64_t at = sizeof(kBegin); at + sizeof(head) <= pack->size; at += SizeOf(head)) {
        if (!ReadAt(pack->file.Get(), at, &head, sizeof(head)) || !IsPlausible(head)) return;
        if (at + SizeOf(head) > pack->size) return;
        places_[head.keyHash] = {pack, at};
    }
}

std::optional<Picture> ThumbPacks::Find(const std::wstring& key) {
    const std::lock_guard lock(mutex_);
    if (budget_ == 0 || folder_.empty()) return std::nullopt;
    Open();
    const auto found = places_.find(HashOf(key));
    if (found == places_.end()) return std::nullopt;
    const Place place = found->second;
    std::optional<Picture> picture = Read(place, key);
    if (!picture) {
        places_.erase(found);
        return picture;
    }
    // Of the older half: it is not to go with what nobody has asked for.
    const auto age = static_cast<size_t>(std::distance(place.pack, packs_.end()));
    if (age > packs_.size() / 2 + 1 && packs_.size() * PackSize() > budget_ / 2) {
        Append(key, *picture);
    }
    return picture;
}

std::optional<Picture> ThumbPacks::Read(const Place& place, const std::wstring& key) {
    Head head;
    const HANDLE file = place.pack->file.Get();
    if (!ReadAt(file, place.offset, &head, sizeof(head)) || !IsPlausible(head) ||
        head.keyUnits != key.size()) {
        return std::nullopt;
    }
    std::vector<uint8_t> bytes(static_cast<size_t>(SizeOf(head) - sizeof(head)));
    if (!ReadAt(file, place.offset + sizeof(head), bytes.data(),
                static_cast<DWORD>(bytes.size())) ||
        CheckOf(bytes) != head.check ||
        std::memcmp(bytes.data(), key.data(), key.size() * sizeof(wchar_t)) != 0) {
        return std::nullopt;
    }
    dib::BitmapInfoHeader info{};
    info.size = sizeof(info);
    info.width = static_cast<int32_t>(head.width);
    info.height = static_cast<int32_t>(head.height);
    info.planes = 1;
    info.bitCount = 24;
    uint8_t block[sizeof(info)];
    std::memcpy(block, &info, sizeof(info));
    Picture picture = Picture::Make(block, [&](std::span<uint8_t> rows) {
        if (rows.size() != RowBytes(head)) return false;
        std::memcpy(rows.data(), bytes.data() + key.size() * sizeof(wchar_t), rows.size());
        return true;
    });
    if (!picture) return std::nullopt;
    return picture;
}

void ThumbPacks::Put(const std::wstring& key, const Picture& picture) {
    const std::lock_guard lock(mutex_);
    if (budget_ == 0 || folder_.empty() || key.size() > kMostKey) return;
    Open();
    Append(key, picture);
}

void ThumbPacks::Append(const std::wstring& key, const Picture& picture) {
    if (!mayWrite_) return;
    if (own_ == nullptr || own_->size >= PackSize()) mayWrite_ = BeginPack();
    if (!mayWrite_) return;
    const std::span<const uint8_t> rows = picture.View().Bits();
    Head head{.keyUnits = static_cast<uint32_t>(key.size()),
              .width = static_cast<uint32_t>(picture.Width()),
              .height = static_cast<uint32_t>(picture.Height()),
              .keyHash = HashOf(key)};
    if (picture.Header().bitCount != 24 || rows.size() != RowBytes(head)) return;
    std::vector<uint8_t> record(static_cast<size_t>(SizeOf(head)));
    uint8_t* const content = record.data() + sizeof(head);
    const std::span name = std::as_bytes(std::span(key));
    std::memcpy(content, name.data(), name.size());
    std::memcpy(content + name.size(), rows.data(), rows.size());
    head.check = CheckOf(std::span(record).subspan(sizeof(head)));
    std::memcpy(record.data(), &head, sizeof(head));
    if (!WriteAt(own_->file.Get(), own_->size, record.data(), static_cast<DWORD>(record.size()))) {
        own_ = nullptr;  // a full disk, or one that is gone
        mayWrite_ = false;
        return;
    }
    places_[head.keyHash] = {std::prev(packs_.end()), own_->size};
    own_->size += record.size();
}

bool ThumbPacks::BeginPack() {
    own_ = nullptr;
    CreateDirectoryW(RemoveBackslash(FolderOf(RemoveBackslash(folder_))).c_str(), nullptr);
    CreateDirectoryW(RemoveBackslash(folder_).c_str(), nullptr);
    FILETIME now{};
    GetSystemTimeAsFileTime(&now);
    wchar_t name[64];
    wsprintfW(name, L"%08X%08X-%X.thumbs", now.dwHighDateTime, now.dwLowDateTime,
              GetCurrentProcessId());
    Pack pack{.path = folder_ + name,
              .file = UniqueFile(CreateFileW((folder_ + name).c_str(), GENERIC_READ | GENERIC_WRITE,
                                             FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr,
                                             CREATE_NEW, FILE_FLAG_RANDOM_ACCESS, nullptr)),
              .size = sizeof(kBegin)};
    if (!pack.file) return false;
    if (!WriteAt(pack.file.Get(), 0, kBegin, sizeof(kBegin))) {
        DeleteFileW(pack.path.c_str());
        return false;
    }
    packs_.push_back(std::move(pack));
    own_ = &packs_.back();
    MakeRoom();
    return true;
}

uint64_t ThumbPacks::PackSize() const {
    return std::min(kPackSize, budget_ / kFewestPacks);
}

// For one more pack of the usual size, beside those of all copies of the program.
void ThumbPacks::MakeRoom() {
    std::vector<std::wstring> paths = FilesInFolder(folder_, kPattern);
    std::ranges::sort(paths);
    std::vector<uint64_t> sizes;
    for (const std::wstring& path : paths) {
        WIN32_FILE_ATTRIBUTE_DATA data{};
        GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data);
        sizes.push_back(uint64_t{data.nFileSizeHigh} << 32 | data.nFileSizeLow);
    }
    uint64_t size = std::accumulate(sizes.begin(), sizes.end(), PackSize());
    for (size_t i = 0; i < paths.size() && size > budget_; ++i) {
        if (own_ != nullptr && own_->path == paths[i]) continue;
        size -= sizes[i];
        Drop(paths[i]);
    }
}

void ThumbPacks::Drop(const std::wstring& path) {
    const auto pack = std::ranges::find(packs_, path, &Pack::path);
    if (pack != packs_.end()) {
        std::erase_if(places_, [&](const auto& place) { return place.second.pack == pack; });
        packs_.erase(pack);
    }
    DeleteFileW(path.c_str());
}

void ThumbPacks::Clear() {
    const std::lock_guard lock(mutex_);
    places_.clear();
    packs_.clear();
    own_ = nullptr;
    isOpen_ = false;
    if (folder_.empty()) return;
    for (const std::wstring& path : FilesInFolder(folder_, kPattern))
        DeleteFileW(path.c_str());
}

}  // namespace tessary
