// Binding a plug-in to the file or memory block that it is to read.
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
    : lock_(binding.content ? binding.content.Get() : binding.memory) {
    if (lock_) {
        source_ = {static_cast<const char*>(lock_.Address()), static_cast<LONG_PTR>(lock_.Size()),
                   susie::kSourceMemory};
    } else if (!binding.content && binding.memory == nullptr) {
        source_ = {binding.pluginName.c_str(), 0, susie::kSourceFile};
    }
}

bool clsSusie::Supports(const std::wstring& file) {
    if (checkMode_ && !Claims(ToUpper(FileNameOf(file)))) return false;
    if (const std::optional<std::string> name = AnsiPathOf(file)) {
        return calls_.IsSupported(*name, nullptr) == kSupported;
    }
    const std::optional<HeaderBlock> header = ReadFileHeader(file);
    return header && calls_.IsSupported(AnsiNameOf(file), header->data()) == kSupported;
}

bool clsSusie::Supports(HLOCAL memory, const std::wstring& fileName) {
    const BlockLock lock(memory);
    if (!lock) return false;
    const std::string name = AnsiSourceNameOf(fileName);
    // Of a long block the plug-in gets the block itself, and may look as far as it likes.
    if (lock.Size() >= std::tuple_size_v<HeaderBlock>) {
        return calls_.IsSupported(name, lock.Address()) == kSupported;
    }
    const HeaderBlock header = HeaderOf(lock.Bytes());
    return calls_.IsSupported(name, header.data()) == kSupported;
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
        calls_.SetBoundFile(path);
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
    if (dllStyle_ == kStyleNone) throw PluginError(kErrorWrongPluginKind, kPropertyNotOfferedText);
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
    calls_.SetBoundFile({});
}

clsSusie::Binding clsSusie::AcceptedFile(const std::wstring& path) {
    Binding binding;
    binding.file = path;
    const std::optional<std::string> name = AnsiPathOf(path);
    // An archive's list is its own test, unless the file had to be read into memory first.
    const bool askFirst = dllStyle_ == kStylePicture || !name;
    if (askFirst && !Supports(path)) throw PluginError(kErrorNotSupported, kNotSupportedText);
    if (name) {
        binding.pluginName = *name;
    } else {
        binding.content = ReadWholeFile(path);
        if (!binding.content) throw PluginError(kErrorNotSupported, kNotSupportedText);
    }
    if (dllStyle_ == kStyleArchive) {
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
    if (dllStyle_ == kStyleArchive) ReadMembers(binding);
    if (binding.members.empty() && !Supports(memory, fileName)) {
        throw PluginError(kErrorNotSupported, kNotSupportedText);
    }
    return binding;
}

}  // namespace tessary
