// Binding a plug-in to the file or memory block that it is to read.
#include <algorithm>

#include "app/base/paths.h"
#include "app/base/text.h"
#include "plugin/clsSusie.h"
#include "plugin/source_block.h"

namespace tessary {
namespace {

// The only answer of IsSupported that means yes.
constexpr int32_t kSupported = 1;

}  // namespace

clsSusie::Source::Source(const Binding& binding)
    : lock_(binding.content ? binding.content.Get() : binding.memory),
      source_{binding.pluginName, lock_.Bytes(), !binding.content && binding.memory == nullptr} {
    if (!source_.isFile && !lock_) throw PluginError(kErrorInvalidMemory, kInvalidMemoryText);
}

bool clsSusie::Supports(const std::wstring& file) {
    if (checkMode_ && !MatchesAnyPattern(ToUpper(FileNameOf(file)), traits_.patterns)) return false;
    if (std::optional<std::string> name = AnsiPathOf(file)) return Supports({.name = *name});
    const std::optional<HeaderBlock> header = ReadFileHeader(file);
    return header && Supports({AnsiNameOf(file), *header, false});
}

bool clsSusie::Supports(HLOCAL memory, const std::wstring& fileName) {
    const BlockLock lock(memory);
    return lock && Supports({AnsiSourceNameOf(fileName), lock.Bytes(), false});
}

bool clsSusie::Supports(const PluginSource& source) {
    // By its beginning the plug-in has judged.
    PluginSource judged = source;
    judged.bytes = source.bytes.first(std::min(source.bytes.size(), susie::kHeaderBlockSize));
    const PluginAnswer answer =
        Ask(L"IsSupported", judged, [&] { return connection_->Supports(source); });
    return answer.code == kSupported;
}

bool clsSusie::CheckFile(const std::wstring& file) {
    return Member(L"CheckFile(", [&] {
        if (file.empty()) throw PluginError(kErrorNoFileName, kNoFileNameText);
        RequireModule();
        const bool supported = Supports(file);
        UnloadAfterUse();
        return supported;
    });
}

bool clsSusie::CheckMemory(HLOCAL memory, const std::wstring& fileName) {
    return Member(L"CheckMemory(", [&] {
        RequireModule();
        const bool supported = Supports(memory, fileName);
        UnloadAfterUse();
        return supported;
    });
}

void clsSusie::SetFile(const std::wstring& path) {
    Member(L"SetFile(", [&] {
        RequireNoCall();
        if (path.empty()) {
            Unbind();
            UnloadAfterUse();
            throw PluginError(kErrorNoFileName, kNoFileNameText);
        }
        // A copy in memory is made anew: the file may have changed since.
        if (EqualsIgnoreCase(path, bound_.file) && !bound_.content) return;
        Bind([&] { return AcceptedFile(path); });
        connection_->SetBoundFile(path);
    });
}

void clsSusie::SetMemoryHandle(HLOCAL memory, const std::wstring& fileName) {
    Member(L"SetMemoryHandle(", [&] {
        RequireNoCall();
        if (!IsLocalHandleValid(memory)) {
            Unbind();
            UnloadAfterUse();
            throw PluginError(kErrorInvalidMemory, kInvalidMemoryText);
        }
        Bind([&] { return AcceptedMemory(memory, fileName); });
    });
}

// `accept` makes the new binding or throws; either way the one before is gone.
template <typename Accept>
void clsSusie::Bind(Accept&& accept) {
    RequireModule();
    if (traits_.style == kStyleNone)
        throw PluginError(kErrorWrongPluginKind, kPropertyNotOfferedText);
    Unbind();
    try {
        bound_ = accept();
    } catch (...) {
        UnloadAfterUse();
        throw;
    }
}

void clsSusie::Unbind() {
    bound_ = {};
    if (connection_ != nullptr) connection_->SetBoundFile({});
}

clsSusie::Binding clsSusie::AcceptedFile(const std::wstring& path) {
    Binding binding;
    binding.file = path;
    const std::optional<std::string> name = AnsiPathOf(path);
    // An archive's list is its own test, unless the file had to be read into memory first.
    const bool askFirst = traits_.style == kStylePicture || !name;
    if (askFirst && !Supports(path)) throw PluginError(kErrorNotSupported, kNotSupportedText);
    if (name) {
        binding.pluginName = *name;
    } else {
        binding.content = ReadWholeFile(path);
        if (!binding.content) throw PluginError(kErrorNotSupported, kNotSupportedText);
    }
    if (traits_.style == kStyleArchive) {
        ReadMembers(binding);
        // Of any file at all some plug-ins give an empty list.
        if (binding.members.empty() && !askFirst && !Supports(path)) {
            throw PluginError(kErrorNotSupported, kNotSupportedText);
        }
    }
    return binding;
}

clsSusie::Binding clsSusie::AcceptedMemory(HLOCAL memory, const std::wstring& fileName) {
    Binding binding;
    binding.memory = memory;
    if (traits_.style == kStyleArchive) ReadMembers(binding);
    if (binding.members.empty() && !Supports(memory, fileName)) {
        throw PluginError(kErrorNotSupported, kNotSupportedText);
    }
    return binding;
}

}  // namespace tessary
