#include "WireExamples.h"

#include <fstream>
#include <iterator>
#include <regex>
#include <sstream>
#include <stdexcept>

namespace {

using tExamples = std::map<std::string, WireExample>;

const std::string kToDevice = "\u2192";
const std::string kFromDevice = "\u2190";
const std::string kBlock = "```wire ";
const std::string kBlockEnd = "```";

std::string Load(const std::string& name) {
    std::ifstream stream(std::string(QUILLBOX_DOCUMENTS) + "/" + name, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// What the text column has to show.
std::string AsText(const std::string& bytes) {
    std::string text = bytes;
    for (char& byte : text) {
        byte = byte >= ' ' && byte <= '~' ? byte : '.';
    }
    return text;
}

std::string FromHexadecimal(const std::string& digits) {
    std::istringstream stream(digits);
    std::string bytes;
    for (std::string number; stream >> number;) {
        bytes += static_cast<char>(std::stoi(number, nullptr, 16));
    }
    return bytes;
}

/// Adds a line's bytes to the side that is speaking.
void TakeLine(const std::string& line, WireExample& example, std::string*& speaking) {
    static const std::regex shape("(" + kToDevice + "|" + kFromDevice +
                                  "| ) ([0-9a-f]{2}(?: [0-9a-f]{2}){0,15}) +\\|(.{1,16})\\|");
    std::smatch parts;
    if (!std::regex_match(line, parts, shape)) {
        throw std::runtime_error("not a line of bytes: " + line);
    }
    if (parts[1] != " ") {
        speaking = parts[1] == kToDevice ? &example.sent : &example.received;
    }
    const std::string bytes = FromHexadecimal(parts[2]);
    if (speaking == nullptr || AsText(bytes) != parts[3]) {
        throw std::runtime_error("bytes and text differ: " + line);
    }
    *speaking += bytes;
}

WireExample ReadBlock(std::istream& document) {
    WireExample example;
    std::string* speaking = nullptr;
    for (std::string line; std::getline(document, line) && line != kBlockEnd;) {
        TakeLine(line, example, speaking);
    }
    return example;
}

tExamples ReadExamples() {
    std::istringstream document(Load("protocol.md"));
    tExamples examples;
    for (std::string line; std::getline(document, line);) {
        if (!line.starts_with(kBlock)) {
            continue;
        }
        const std::string name = line.substr(kBlock.size());
        if (!examples.emplace(name, ReadBlock(document)).second) {
            throw std::runtime_error("twice: " + line);
        }
    }
    return examples;
}

} // namespace

const tExamples& WireExamples() {
    static const tExamples examples = ReadExamples();
    return examples;
}

const std::map<std::string, std::string>& ExampleFiles() {
    static const std::map<std::string, std::string> files{
        {"empty.txt", ""}, {"hello.txt", "Hello"}, {"Music/Été.wav", std::string(44, 'x')}};
    return files;
}

std::string ReadDocument(const std::string& name) {
    static const std::regex whiteSpace("\\s+");
    return std::regex_replace(Load(name), whiteSpace, " ");
}
