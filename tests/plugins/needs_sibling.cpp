// Makes a plug-in that cannot be loaded without sibling.dll or sibling_gone.dll.
extern "C" __declspec(dllimport) int SiblingAnswer();
extern "C" __declspec(dllexport) int AskSibling() {
    return SiblingAnswer();
}
