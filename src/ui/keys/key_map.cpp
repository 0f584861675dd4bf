#include "ui/keys/key_map.h"

#include <algorithm>
#include <memory>
#include <type_traits>
#include <utility>

#include "app/base/error.h"
#include "app/settings/settings_store.h"
#include "res/resource.h"
#include "ui/form/accelerators.h"
#include "ui/keys/key_commands.h"

namespace tessary {
namespace {

constexpr wchar_t kSection[] = L"Keys";
constexpr wchar_t kNoKey[] = L"-";  // an empty text would be a missing one

struct DestroyTable {
    void operator()(HACCEL table) const { DestroyAcceleratorTable(table); }
};
using UniqueTable = std::unique_ptr<std::remove_pointer_t<HACCEL>, DestroyTable>;

struct ChosenOnes {
    KeyMap keys;
    UniqueTable table;
};

bool IsKeyCommand(int id) {
    return std::ranges::count(KeyCommands(), id, &KeyCommand::id) > 0;
}

// Each key once, the first command's.
void DropSecondOnes(KeyMap& keys) {
    std::vector<KeyStroke> taken;
    for (const KeyCommand& command : KeyCommands()) {
        std::erase_if(keys[command.id], [&](const KeyStroke& stroke) {
            if (std::ranges::count(taken, stroke) > 0) return true;
            taken.push_back(stroke);
            return false;
        });
    }
}

KeyMap StoredKeys() {
    KeyMap keys = UsualKeys();
    KeyMap chosen;
    for (const KeyCommand& command : KeyCommands()) {
        const std::wstring text =
            Trapped(std::wstring(), [&] { return GetSetting(kSection, command.key); });
        if (!text.empty()) chosen[command.id] = StrokesOfText(text);
    }
    // What was chosen counts more than what the program brings.
    for (const auto& [id, strokes] : chosen) {
        for (auto& [other, usual] : keys) {
            std::erase_if(usual, [&](const KeyStroke& stroke) {
                return std::ranges::count(strokes, stroke) > 0;
            });
        }
    }
    for (auto& [id, strokes] : chosen)
        keys[id] = std::move(strokes);
    DropSecondOnes(keys);
    return keys;
}

UniqueTable TableOf(const KeyMap& keys) {
    std::vector<ACCEL> table;
    const auto add = [&](const KeyStroke& stroke, int id) {
        table.push_back(
            {static_cast<BYTE>(FVIRTKEY | stroke.modifiers), stroke.key, static_cast<WORD>(id)});
    };
    for (const auto& [id, strokes] : keys) {
        for (const KeyStroke& stroke : strokes)
            add(stroke, id);
    }
    for (const ACCEL& key : KeysOfResource(acceleratorsMainWindow)) {
        const KeyStroke stroke{key.key, static_cast<BYTE>(key.fVirt & ~FVIRTKEY)};
        if (!IsKeyCommand(key.cmd) && !CommandOf(keys, stroke)) add(stroke, key.cmd);
    }
    return UniqueTable(CreateAcceleratorTableW(table.data(), static_cast<int>(table.size())));
}

ChosenOnes Stored() {
    KeyMap keys = StoredKeys();
    UniqueTable table = TableOf(keys);
    return {std::move(keys), std::move(table)};
}

ChosenOnes& Chosen() {
    static ChosenOnes chosen = Stored();
    return chosen;
}

}  // namespace

const KeyMap& UsualKeys() {
    static const KeyMap usual = [] {
        KeyMap keys;
        for (const KeyCommand& command : KeyCommands())
            keys[command.id];
        for (const ACCEL& key : KeysOfResource(acceleratorsMainWindow)) {
            if (!IsKeyCommand(key.cmd)) continue;
            keys[key.cmd].push_back({key.key, static_cast<BYTE>(key.fVirt & ~FVIRTKEY)});
        }
        return keys;
    }();
    return usual;
}

const KeyMap& ChosenKeys() {
    return Chosen().keys;
}

void ReadChosenKeys() {
    Chosen() = Stored();
}

void ChooseKeys(const KeyMap& keys) {
    ChosenOnes& chosen = Chosen();
    chosen.keys = keys;
    DropSecondOnes(chosen.keys);
    chosen.table = TableOf(chosen.keys);
    for (const KeyCommand& command : KeyCommands()) {
        const std::vector<KeyStroke>& strokes = chosen.keys[command.id];
        Trapped([&] {
            if (strokes == UsualKeys().at(command.id)) return DeleteSetting(kSection, command.key);
            SaveSetting(kSection, command.key, strokes.empty() ? kNoKey : ToText(strokes));
        });
    }
}

std::optional<int> CommandOf(const KeyMap& keys, const KeyStroke& stroke) {
    for (const auto& [id, strokes] : keys) {
        if (std::ranges::count(strokes, stroke) > 0) return id;
    }
    return std::nullopt;
}

void Assign(KeyMap& keys, int command, const KeyStroke& stroke) {
    for (auto& [id, strokes] : keys)
        std::erase(strokes, stroke);
    keys[command].insert(keys[command].begin(), stroke);
}

HACCEL ChosenAccelerators() {
    return Chosen().table.get();
}

}  // namespace tessary
