// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/testenvironment.h"

#include <gmock/gmock.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace tavrix::test
{

namespace
{

// The folder that a run lives in. Nothing of the user's home is read or written by a test.
class RunFolder
{
public:
    RunFolder()
    {
        const char* base = std::getenv("TMPDIR");
        std::string pattern = std::string(base && *base == '/' ? base : "/tmp") + "/tavrix-test-XXXXXX";
        std::vector<char> name(pattern.begin(), pattern.end());
        name.push_back('\0');
        if (mkdtemp(name.data())) {
            path_ = name.data();
        }
    }
    ~RunFolder()
    {
        if (path_.empty()) {
            return;
        }
        // remove_all deletes links themselves, never what they lead to.
        std::error_code error;
        std::filesystem::remove_all(path_, error);
        if (error) {
            std::fprintf(stderr, "%s cannot be removed: %s\n", path_.c_str(), error.message().c_str());
        }
    }
    RunFolder(const RunFolder&) = delete;
    RunFolder& operator=(const RunFolder&) = delete;

    [[nodiscard]] bool isValid() const { return !path_.empty(); }

    [[nodiscard]] bool makeVariableFolder(const char* variable, const std::string& name) const
    {
        const std::string folder = path_ + "/" + name;
        return mkdir(folder.c_str(), S_IRWXU) == 0 && setenv(variable, folder.c_str(), 1) == 0;
    }

private:
    std::string path_;
};

bool prepareEnvironment(const RunFolder& folder)
{
    unsetenv("LANGUAGE");
    return folder.isValid() && folder.makeVariableFolder("HOME", "home") &&
           folder.makeVariableFolder("TMPDIR", "tmp") && folder.makeVariableFolder("XDG_DATA_HOME", "data") &&
           folder.makeVariableFolder("XDG_CONFIG_HOME", "config") &&
           folder.makeVariableFolder("XDG_CACHE_HOME", "cache") &&
           folder.makeVariableFolder("XDG_RUNTIME_DIR", "runtime");
}

} // namespace

int runTests(int argc, char** argv, const MakeApplication& makeApplication)
{
    const RunFolder folder;
    if (!prepareEnvironment(folder)) {
        std::perror("no folder for the tests");
        return EXIT_FAILURE;
    }
    testing::InitGoogleMock(&argc, argv);
    const std::unique_ptr<QCoreApplication> application = makeApplication(argc, argv);
    // The application object has taken the number format of the user's locale; the program sets this one too.
    std::setlocale(LC_NUMERIC, "C");
    return RUN_ALL_TESTS();
}

} // namespace tavrix::test
