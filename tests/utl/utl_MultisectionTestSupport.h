// Helpers of the container tests (test_MultisectionFile*.cpp).
#ifndef UTL_MULTISECTIONTESTSUPPORT_H
#define UTL_MULTISECTIONTESTSUPPORT_H

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "utl/utl_MultisectionFile.h"
#include "zul_TestSupport.h"

namespace utl_test {

// Sections as (name, bytes), in table order.
using Sections = std::vector<std::pair<std::string, std::string>>;

inline std::string SectionOf(utl_MultisectionFile& f, const std::string& name)
{
    std::string data(static_cast<size_t>(f.getSectionLength(name.c_str())), '\0');
    f.getSectionData(name.c_str(), &data[0]);
    return data;
}

inline Sections SectionsOf(utl_MultisectionFile& f)
{
    Sections out;
    for (int i = 0; i < f.SectionCount(); ++i) {
        const std::string name = f.SectionName(i).c_str();
        out.emplace_back(name, SectionOf(f, name));
    }
    return out;
}

// The sections of the container at `path`, or false when it is missing or any section fails.
inline bool ReadSections(const std::string& path, Sections& out)
{
    try {
        utl_MultisectionFile f(path.c_str(), utl_FileAccessRead);
        out = SectionsOf(f);
        return true;
    } catch (const nex_Exception&) {
        return false;
    }
}

// Whether the container at `path` reads and holds exactly the sections.
inline bool Holds(const std::string& path, const Sections& sections)
{
    Sections now;
    return ReadSections(path, now) && now == sections;
}

// Creates the container at `path` (replacing it) with the sections.
inline void WriteContainer(const std::string& path, const Sections& sections)
{
    utl_MultisectionFile f(path.c_str(), utl_FileAccessWrite);
    for (const auto& section : sections)
        f.setSectionData(section.first.c_str(), section.second.data(), static_cast<int>(section.second.size()));
    f.saveChanges();
}

// The save file this process writes beside the container at `path`.
inline std::string SaveFileOf(const std::string& path)
{
    return path + "." + std::to_string(zul_test::ProcessId()) + ".tmp";
}

inline std::vector<std::string> FilesIn(const std::string& directory)
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(directory))
        names.push_back(entry.path().filename().string());
    return names;
}

// n pseudo-random bytes.
inline std::string Pattern(size_t n, unsigned seed)
{
    std::string out(n, '\0');
    for (char& c : out) {
        seed = seed * 1103515245u + 12345u;
        c = static_cast<char>(seed >> 16);
    }
    return out;
}

// Expects an E raised in the container's source whose text is the quoted path, ": " and the
// message.
template <class E = nex_TextException, class F>
void ExpectFailure(const std::string& path, const std::string& message, F action)
{
    try {
        action();
        ADD_FAILURE() << "no failure, expected " << message;
    } catch (const E& e) {
        EXPECT_EQ(e.UserReport(), ("\"" + path + "\": " + message).c_str());
        EXPECT_EQ(e.File(), "utl/impl/utl_MultisectionFile");
    }
}

}  // namespace utl_test

#endif
