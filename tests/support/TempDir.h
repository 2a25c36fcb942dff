// A directory of a test's own, removed with everything in it.
#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

class TempDir {
public:
    TempDir() {
        std::string strPattern = testing::TempDir() + "fleetkit-XXXXXX";
        if (mkdtemp(strPattern.data()) == nullptr) {
            throw std::runtime_error("no temporary directory at " + strPattern);
        }
        m_path = strPattern;
    }
    ~TempDir() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    const std::filesystem::path& getPath() const { return m_path; }
    std::string file(const std::string& strName) const { return (m_path / strName).string(); }

private:
    std::filesystem::path m_path;
};

// The whole content of a file; empty when there is none.
inline std::string readFile(const std::string& strPath) {
    std::ifstream file(strPath, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}
