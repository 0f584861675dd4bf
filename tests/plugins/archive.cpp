// GetArchiveInfo, GetFileInfo and GetFile of the test plug-ins.
#include <cstring>

#include "helpers/susiectl/susie_interface.h"
#include "tests/plugins/function.h"
#include "tests/plugins/source.h"

namespace tessary::test {
namespace {

struct Member {
    std::string path;
    std::string name;
    std::string data;
    ULONG_PTR position;
};

ULONG_PTR PositionOf(const Script& script, size_t index, size_t offset) {
    return script.Has("position:offset") ? offset : index;
}

// Of a line "member<TAB>size<TAB>…".
size_t SizeIn(const std::string& line) {
    return std::strtoul(line.c_str() + 7, nullptr, 10);
}

// The members whose lines stand in the head, then the generated ones.
std::vector<Member> MembersOf(const Script& script, const std::string& content) {
    std::vector<Member> members;
    Script head;
    size_t offset = head.Add(content);
    for (const std::string& line : head.Lines()) {
        if (!line.starts_with("member\t")) continue;
        const size_t path = line.find('\t', 7) + 1;
        const size_t name = line.find('\t', path) + 1;
        const size_t size = SizeIn(line);
        members.push_back({line.substr(path, name - path - 1), line.substr(name),
                           content.substr(std::min(offset, content.size()), size),
                           PositionOf(script, members.size(), offset)});
        offset += size;
    }
    for (int i = 0; i < script.Number("generate").value_or(0); ++i) {
        const std::string name = std::to_string(i) + ".tst";
        members.push_back({"", name, "", PositionOf(script, members.size(), offset)});
    }
    return members;
}

template <size_t size>
void Fill(char (&field)[size], const std::string& text, bool unterminated) {
    std::memset(field, unterminated ? 'x' : 0, size);
    std::memcpy(field, text.data(), std::min(text.size(), unterminated ? size : size - 1));
}

susie::FileInfo RecordOf(const Script& script, const Member& member) {
    susie::FileInfo record{};
    std::memcpy(record.method, "stored", 6);
    record.position = member.position;
    if (!script.Has("zero-fields")) {
        record.compressedSize = record.fileSize = member.data.size();
        record.timestamp = 1'000'000'000;
        record.crc = 0x12345678;
    }
    const bool joined = script.Has("path-in-name");
    const bool unterminated = script.Has("unterminated");
    Fill(record.path, joined ? "" : member.path, unterminated);
    Fill(record.fileName, joined ? member.path + member.name : member.name, unterminated);
    return record;
}

int List(const Script& script, const std::string& content, HLOCAL* list) {
    if (!content.starts_with("TSA\n")) return susie::kUnknownFormat;
    std::string records;
    for (const Member& member : MembersOf(script, content)) {
        const susie::FileInfo record = RecordOf(script, member);
        records.append(reinterpret_cast<const char*>(&record), sizeof record);
    }
    std::string end(sizeof(susie::FileInfo), '\0');
    if (script.Has("dirty-end")) std::fill(end.begin() + 1, end.end(), 'x');
    if (!script.Has("no-end")) records += end;
    records.append(static_cast<size_t>(script.Number("tail").value_or(0)), '\xA5');
    *list = MakeBlock(records, script.Has("fixed") ? LMEM_FIXED : LMEM_MOVEABLE);
    return susie::kSuccess;
}

int Describe(const Script& script, const std::string& content, const std::string& fileName,
             susie::FileInfo* info) {
    for (const Member& member : MembersOf(script, content)) {
        if (fileName != member.path + member.name && fileName != member.name) continue;
        *info = RecordOf(script, member);
        return susie::kSuccess;
    }
    return susie::kInternalError;
}

int Store(const Script& script, const Member& member, const std::string& folder) {
    if (script.Has("no-disk")) return susie::kNotImplemented;
    const bool below = script.Has("store-below");
    if (below) CreateDirectoryA((folder + "\\below").c_str(), nullptr);
    const std::string path = folder + (below ? "\\below\\" : "\\") + member.name;
    HANDLE file = CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr,
                              script.Has("no-overwrite") ? CREATE_NEW : CREATE_ALWAYS,
                              below ? FILE_ATTRIBUTE_READONLY : 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) return susie::kInternalError;
    DWORD written = 0;
    WriteFile(file, member.data.data(), static_cast<DWORD>(member.data.size()), &written, nullptr);
    CloseHandle(file);
    return susie::kSuccess;
}

int Extract(const Script& script, const Member& member, char* destination, uint32_t flag) {
    if ((flag & 0x700) != susie::kDestinationMemory) return Store(script, member, destination);
    if (script.Has("no-memory")) return susie::kNotImplemented;
    std::string data = member.data;
    if (script.Has("extra-byte")) data += '\xA5';
    if (script.Has("extra-zero")) data += '\0';
    if (script.Has("trusts-size")) data.resize(RecordOf(script, member).fileSize);
    *reinterpret_cast<HLOCAL*>(destination) =
        MakeBlock(data, script.Has("fixed") ? LMEM_FIXED : LMEM_MOVEABLE);
    return susie::kSuccess;
}

int ExtractAt(const Script& script, const std::string& content, ULONG_PTR position,
              char* destination, uint32_t flag, susie::ProgressCallback progress,
              LONG_PTR userData) {
    for (const Member& member : MembersOf(script, content)) {
        if (member.position != position) continue;
        const int total = static_cast<int>(member.data.size());
        if (progress(0, total, userData) || progress(total, total, userData))
            return susie::kAborted;
        return Extract(script, member, destination, flag);
    }
    return susie::kInternalError;
}

// GetFile is not told the size of an archive in memory: it ends where its head says.
std::string ReadArchiveInMemory(const char* source) {
    Script head;
    size_t size = head.Add(source);
    for (const std::string& line : head.Lines())
        if (line.starts_with("member\t")) size += SizeIn(line);
    return {source, size};
}

}  // namespace
}  // namespace tessary::test

using namespace tessary;
using namespace tessary::test;

extern "C" int __stdcall GetArchiveInfo(const char* source, LONG_PTR length, uint32_t flag,
                                        HLOCAL* list) {
    const std::string content = ReadSource(source, length, flag);
    return Run({"GetArchiveInfo", __builtin_dwarf_cfa(), 4, content},
               [&](const Script& script) { return List(script, content, list); });
}

extern "C" int __stdcall GetFileInfo(const char* source, LONG_PTR length, const char* fileName,
                                     uint32_t flag, susie::FileInfo* info) {
    const std::string content = ReadSource(source, length, flag);
    return Run({"GetFileInfo", __builtin_dwarf_cfa(), 5, content},
               [&](const Script& script) { return Describe(script, content, fileName, info); });
}

// `position` is the member's, whichever the source is.
extern "C" int __stdcall GetFile(const char* source, LONG_PTR position, char* destination,
                                 uint32_t flag, susie::ProgressCallback progress,
                                 LONG_PTR userData) {
    const std::string content =
        (flag & 7) == susie::kSourceFile ? ReadFileContent(source, 0) : ReadArchiveInMemory(source);
    return Run({"GetFile", __builtin_dwarf_cfa(), 6, content}, [&](const Script& script) {
        return ExtractAt(script, content, static_cast<ULONG_PTR>(position), destination, flag,
                         progress, userData);
    });
}
