// The member list of a bound archive.
#include "plugin/clsSusie.h"

namespace tessary {

void clsSusie::ReadMembers(Binding& binding) {
    OwnedBlock list;
    {
        const Source archive(binding);
        if (!archive.IsValid()) throw PluginError(kErrorInvalidMemory, kInvalidMemoryText);
        HLOCAL handle = nullptr;
        // What a failed call leaves behind may be freed already: it is not touched.
        if (calls_.GetArchiveInfo(archive.Get(), handle) != susie::kSuccess ||
            !IsLocalHandleValid(handle)) {
            throw PluginError(kErrorNotSupported, kNotSupportedText);
        }
        list = OwnedBlock(handle);
    }
    binding.members = ReadArchiveMembers(list.Get());
}

const ArchiveMembers& clsSusie::Members() {
    if (bound_.IsEmpty()) throw PluginError(kErrorNothingBound, kNothingBoundText);
    if (dllStyle_ != kStyleArchive) {
        throw PluginError(kErrorWrongPluginKind, kPropertyNotOfferedText);
    }
    return bound_.members;
}

int32_t clsSusie::FileNumber() {
    return Member(L"Property Get FileNumber",
                  [&] { return static_cast<int32_t>(Members().size()); });
}

std::wstring clsSusie::Files(int32_t index) {
    return Member(L"Property Get Files(", [&] {
        const ArchiveMembers& members = Members();
        if (index < 1 || static_cast<size_t>(index) > members.size()) {
            throw PluginError(kErrorInvalidMemberIndex, kInvalidMemberIndexText);
        }
        return ArchiveMemberName(members[static_cast<size_t>(index) - 1]);
    });
}

}  // namespace tessary
