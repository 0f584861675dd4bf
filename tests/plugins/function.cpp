#include "tests/plugins/function.h"

#include <map>

#include "helpers/susiectl/susie_interface.h"
#include "tests/plugins/misdeeds.h"

namespace tessary::test {
namespace {

// After some of the changes no compiled code can be trusted to run.
int ReturnDirty(const FunctionCall& call, const std::vector<std::string>& states, int answer) {
    bool isFragile = false;
    for (const std::string& state : states) {
        MakeDirty(state);
        isFragile = isFragile || state == "registers" || state == "direction";
    }
    if (isFragile) ReturnWithoutRegisters(answer, call.frame, call.argumentCount);
    return answer;
}

}  // namespace

int& CallCount(const std::string& name) {
    static std::map<std::string, int> counts;
    return counts[name];
}

std::string& LastCondition() {
    static std::string condition;
    return condition;
}

bool IsExported(const char* name) {
    return GetProcAddress(ThisModule(), name) != nullptr;
}

int Run(const FunctionCall& call, const std::function<int(const Script&)>& work) {
    const std::string name = call.name;
    ++CallCount(name);
    Script script = PluginScript();
    if (call.content.starts_with("TST ") || call.content.starts_with("TSA\n"))
        script.Add(call.content);
    if (name != "GetLastCondition") LastCondition() = script.Text("condition").value_or("");
    Misbehave(script, name);
    int answer = script.Number("answer:" + name).value_or(0);
    if (!script.Number("answer:" + name)) answer = work(script);
    answer = script.Number("answer-after:" + name).value_or(answer);
    return ReturnDirty(call, script.Kinds("dirty", name), answer);
}

}  // namespace tessary::test

using namespace tessary::test;

extern "C" int __stdcall TestCallCount(const char* name) {
    return CallCount(name);
}

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, void*) {
    if (reason == DLL_PROCESS_ATTACH) {
        ReadPluginScript(module);
        return Run({"DllMain"}, [](const Script&) { return TRUE; });
    }
    if (reason == DLL_PROCESS_DETACH) Run({"DllUnload"}, [](const Script&) { return TRUE; });
    return TRUE;
}
