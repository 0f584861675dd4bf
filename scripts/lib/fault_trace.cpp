// Part of each test program of the copy that faults.py makes: the environment says which test is
// under way, for the libraries and processes that the test uses too. Between two tests of a suite
// it is all of the suite, between two suites all tests.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace {

void SetTest(const std::string& name) {
#ifdef _WIN32
    _putenv(("TESSARY_FAULT_TEST=" + name).c_str());
#else
    setenv("TESSARY_FAULT_TEST", name.c_str(), 1);
#endif
}

class FaultTrace : public testing::EmptyTestEventListener {
    void OnTestSuiteStart(const testing::TestSuite& suite) override {
        SetTest(std::string(suite.name()) + ".*");
    }
    void OnTestStart(const testing::TestInfo& test) override {
        SetTest(std::string(test.test_suite_name()) + "." + test.name());
    }
    void OnTestEnd(const testing::TestInfo& test) override {
        SetTest(std::string(test.test_suite_name()) + ".*");
    }
    void OnTestSuiteEnd(const testing::TestSuite&) override { SetTest("*"); }
};

const bool isListening = [] {
    if (std::getenv("TESSARY_FAULT_TRACE") != nullptr) {
        testing::UnitTest::GetInstance()->listeners().Append(new FaultTrace);
    }
    return true;
}();

}  // namespace
