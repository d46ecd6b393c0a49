// Build tool: turns text-keys.tsv into the C++ source of the table of text weights.
// Usage: MakeTextKeyTable text-keys.tsv TextKeyTable.cpp

#include <fstream>
#include <iostream>
#include <map>
#include <string>
#include <vector>

namespace {

std::vector<std::string> Split(const std::string& line) {
    std::vector<std::string> fields(1);
    for (const char c : line) {
        if (c == '\t') {
            fields.emplace_back();
        } else if (c != '\r') {
            fields.back() += c;
        }
    }
    fields.resize(7);
    return fields;
}

/// Hex digits as "length,{bytes}", filled with zeros to `size` bytes.
std::string ByteList(const std::string& hex, std::size_t size) {
    std::string out = std::to_string(hex.size() / 2) + ",{";
    for (std::size_t i = 0; i < size; ++i) {
        out += (i > 0 ? "," : "");
        out += 2 * i < hex.size() ? "0x" + hex.substr(2 * i, 2) : "0";
    }
    return out + "}";
}

std::string Number(const std::string& digits, const char* prefix) {
    return digits.empty() ? "0" : prefix + digits;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) return 2;
    std::ifstream in(argv[1]);
    std::ofstream out(argv[2]);
    std::string line;
    std::getline(in, line);  // column names
    out << "#include \"jet/index/TextKeyTable.h\"\n\nnamespace jet {\n"
           "const std::array<TextWeight, 65536> kTextWeights = {{\n";
    unsigned count = 0;
    std::map<std::string, unsigned> firstOfWeights;
    std::string firstUnits;
    while (std::getline(in, line)) {
        const std::vector<std::string> f = Split(line);
        if (std::stoul(f[0], nullptr, 16) != count++) {
            std::cerr << argv[1] << ": line for unit " << f[0] << " is out of order\n";
            return 1;
        }
        out << '{' << ByteList(f[2], 4) << ',' << ByteList(f[3], 2) << ',' << Number(f[4], "0x")
            << ',' << Number(f[5], "0x") << ',' << Number(f[6], "") << "},\n";
        // A unit without any weight is like no other one.
        const std::string weights = f[2] + '\t' + f[3] + '\t' + f[4] + '\t' + f[5] + '\t' + f[6];
        const bool hasWeight = weights.find_first_not_of('\t') != weights.npos;
        const unsigned unit = count - 1;
        const unsigned first =
            hasWeight ? firstOfWeights.try_emplace(weights, unit).first->second : unit;
        firstUnits += std::to_string(first) + ",\n";
    }
    out << "}};\nconst std::array<char16_t, 65536> kFirstUnits = {{\n"
        << firstUnits << "}};\n}  // namespace jet\n";
    if (count != 65536 || !out.flush()) {
        std::cerr << argv[1] << ": " << count << " units, 65536 expected\n";
        return 1;
    }
    return 0;
}
