#include "ui/keys/key_map.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "app/settings/settings_store.h"
#include "res/resource.h"
#include "tests/support/redirected_settings.h"
#include "ui/form/accelerators.h"
#include "ui/keys/key_commands.h"

namespace tessary::test {
namespace {

class KeyMapTest : public testing::Test {
  protected:
    KeyMapTest() { ReadChosenKeys(); }
    ~KeyMapTest() override { ChooseKeys(UsualKeys()); }

    static std::vector<int> CommandsAtWork(WORD key, BYTE modifiers = 0) {
        std::vector<ACCEL> table(
            static_cast<size_t>(CopyAcceleratorTableW(ChosenAccelerators(), nullptr, 0)));
        CopyAcceleratorTableW(ChosenAccelerators(), table.data(), static_cast<int>(table.size()));
        std::vector<int> commands;
        for (const ACCEL& one : table) {
            if (one.key == key && (one.fVirt & ~FVIRTKEY) == modifiers) commands.push_back(one.cmd);
        }
        return commands;
    }

    RedirectedSettings settings_;
};

using Commands = std::vector<int>;

TEST_F(KeyMapTest, EveryKeyOfTheProgramCanBeChosenButThoseThatAreNeededEverywhere) {
    for (const ACCEL& key : KeysOfResource(acceleratorsMainWindow)) {
        const KeyStroke stroke{key.key, static_cast<BYTE>(key.fVirt & ~FVIRTKEY)};
        EXPECT_EQ(CommandOf(UsualKeys(), stroke).has_value(), MayBeChosen(stroke)) << key.cmd;
        EXPECT_EQ(CommandsAtWork(stroke.key, stroke.modifiers), Commands{key.cmd});
    }
    for (const ACCEL& key : KeysOfResource(acceleratorsClipboard))
        EXPECT_FALSE(MayBeChosen({key.key, static_cast<BYTE>(key.fVirt & ~FVIRTKEY)}));
    std::set<std::wstring> names;
    // Of keys that the system may have no name for.
    for (WORD key = VK_NUMPAD0; key <= VK_NUMPAD9; ++key)
        EXPECT_TRUE(names.insert(NameOf(KeyStroke{key})).second);
    for (const KeyCommand& command : KeyCommands()) {
        EXPECT_TRUE(names.insert(command.key).second);
        EXPECT_TRUE(names.insert(command.caption).second);
    }
}

TEST_F(KeyMapTest, ChosenKeysWorkAtOnceAndTheNextTime) {
    KeyMap keys = ChosenKeys();
    Assign(keys, commandStepForward, {'S', 0});
    Assign(keys, commandFlip, {'D', FCONTROL | FSHIFT});
    keys[commandZoomIn].clear();
    ChooseKeys(keys);
    for (int run = 0; run < 2; ++run) {
        EXPECT_EQ(ChosenKeys(), keys);
        EXPECT_EQ(CommandsAtWork('S'), Commands{commandStepForward});
        EXPECT_EQ(CommandsAtWork(VK_RETURN), Commands{commandStepForward}) << "beside the new one";
        EXPECT_EQ(CommandsAtWork(VK_ADD), Commands{});
        EXPECT_EQ(CommandsAtWork(VK_ESCAPE), Commands{commandEscape});
        ReadChosenKeys();
    }
    EXPECT_EQ(NamesOf(keys[commandStepForward]).substr(0, 8), L"S, Enter");
    EXPECT_EQ(NameOf(keys[commandFlip].front()), L"Ctrl+Shift+D");
    EXPECT_EQ(SettingKeys(L"Keys").size(), 4U) << "with the one that has lost its key";

    // What somebody has written there by hand.
    SaveSetting(L"Keys", L"StepForward", L"83 27 9 37 70000000 x 83");
    SaveSetting(L"Keys", L"StepBack", L"83");
    ReadChosenKeys();
    EXPECT_EQ(CommandsAtWork('S'), Commands{commandStepForward});
    EXPECT_EQ(CommandsAtWork(VK_ESCAPE), Commands{commandEscape});
    EXPECT_EQ(ChosenKeys().at(commandStepBack).size(), 0U);
}

}  // namespace
}  // namespace tessary::test
