// sibling.dll and sibling_gone.dll: what needs_sibling.spi and needs_missing.spi import from.
extern "C" __declspec(dllexport) int SiblingAnswer() {
    return 42;
}
