#pragma once

#include <map>
#include <string>

/// One exchange of docs/protocol.md, byte by byte.
struct WireExample {
    std::string sent;     ///< by Quillbox
    std::string received; ///< from the device
};

/// All blocks of the document that are marked "wire NAME", by their names. Throws std::runtime_error with the
/// line where one is malformed: a text column that does not show its bytes, say, or a name that is there
/// twice.
const std::map<std::string, WireExample>& WireExamples();

/// The folder that the device of the examples serves, as a fixture for both sides: contents by path.
const std::map<std::string, std::string>& ExampleFiles();

/// A document by its name in docs/, every run of white space made one space.
std::string ReadDocument(const std::string& name);
