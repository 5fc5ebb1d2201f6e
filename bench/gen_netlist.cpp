// Writes a large netlist in the JSON form of Yosys: a pipeline of look-up tables and registers with buses,
// controls of high fanout, attributes and parameters, always the same for the same options.
//
//   gen_netlist ?--cells N? ?--hierarchical? ?--output FILE?
//
// The flat form is one module; the hierarchical form has the same cells in blocks of a thousand, gathered
// in clusters of sixteen blocks. N counts leaf cells; the default is 1000000, the default output stdout.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr uint64_t block_cells = 1000;
constexpr uint64_t cluster_blocks = 16;
constexpr uint64_t bus_width = 32;

class Random {
public:
    uint64_t next() {
        state_ ^= state_ << 13;
        state_ ^= state_ >> 7;
        state_ ^= state_ << 17;
        return state_;
    }
    uint64_t below(uint64_t n) { return next() % n; }

private:
    uint64_t state_ = 0x2545f4914f6cdd1dull;
};

class Writer {
public:
    explicit Writer(std::FILE* file) : file_(file) { text_.reserve(1 << 20); }
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;

    Writer& operator<<(std::string_view text) {
        text_ += text;
        if (text_.size() > (1 << 20) - 4096)
            flush();
        return *this;
    }
    Writer& operator<<(uint64_t n) { return *this << std::string_view(std::to_string(n)); }

    bool flush() {
        ok_ = ok_ && std::fwrite(text_.data(), 1, text_.size(), file_) == text_.size();
        text_.clear();
        return ok_ && std::fflush(file_) == 0;
    }

private:
    std::FILE* file_;
    std::string text_;
    bool ok_ = true;
};

struct Wire {
    std::string name;
    uint64_t first_bit;
    uint64_t width;
};

/// Writes one module: its ports clk, rst, ce, a bus in and a bus out, cells, nets.
class Module {
public:
    Module(Writer& out, Random& random, std::string name, bool top)
        : out_(out), random_(random), name_(std::move(name)), top_(top) {
        in_ = wire("din", bus_width);
        clk_ = wire("clk", 1);
        rst_ = wire("rst", 1);
        ce_ = wire("ce", 1);
        dout_ = wire("dout", bus_width);
    }

    void write_leaf(uint64_t cells) {
        begin();
        std::vector<uint64_t> recent(bus_width);
        for (uint64_t i = 0; i < bus_width; ++i)
            recent[i] = in_ + i;
        uint64_t bus = 0;
        for (uint64_t i = 0; i < cells; ++i) {
            const uint64_t stage = i / (2 * bus_width), bit = i % bus_width;
            const bool is_register = i / bus_width % 2 == 1;
            if (bit == 0)
                bus = wire((is_register ? "pipe_q" : "pipe_d") + std::to_string(stage), bus_width);
            const uint64_t out = i + bus_width >= cells ? dout_ + (bus_width - (cells - i)) : bus + bit;
            if (is_register)
                write_register(stage, bit, recent[bit], out);
            else
                write_lut(stage, bit, recent, out);
            recent[bit] = out;
        }
        end();
    }

    void write_parent(const std::vector<std::pair<std::string, std::string>>& children) {
        begin();
        uint64_t from = in_;
        for (size_t i = 0; i < children.size(); ++i) {
            const uint64_t to =
                i + 1 == children.size() ? dout_ : wire("link" + std::to_string(i), bus_width);
            begin_cell(children[i].first, children[i].second);
            out_ << "          \"parameters\": {\n          },\n";
            attributes("rtl/top.v:" + std::to_string(10 + i) + ".3-" + std::to_string(10 + i) + ".60");
            out_ << "          \"port_directions\": {\n            \"din\": \"input\",\n"
                    "            \"clk\": \"input\",\n            \"rst\": \"input\",\n"
                    "            \"ce\": \"input\",\n            \"dout\": \"output\"\n          },\n"
                    "          \"connections\": {\n            \"din\": [ ";
            bits(from, bus_width);
            out_ << " ],\n            \"clk\": [ " << clk_ << " ],\n            \"rst\": [ " << rst_
                 << " ],\n            \"ce\": [ " << ce_ << " ],\n            \"dout\": [ ";
            bits(to, bus_width);
            out_ << " ]\n          }\n        }";
            from = to;
        }
        end();
    }

private:
    uint64_t wire(std::string name, uint64_t width) {
        const uint64_t first = next_bit_;
        wires_.push_back({std::move(name), first, width});
        next_bit_ += width;
        return first;
    }

    void bits(uint64_t first, uint64_t width) {
        for (uint64_t i = 0; i < width; ++i)
            out_ << (i ? ", " : "") << first + i;
    }

    void attributes(const std::string& src) {
        out_ << "          \"attributes\": {\n            \"src\": \"" << src << "\"\n          },\n";
    }

    void begin_cell(const std::string& name, std::string_view type) {
        out_ << (cells_++ ? ",\n" : "\n") << "        \"" << name << "\": {\n          \"hide_name\": 0,\n"
             << "          \"type\": \"" << type << "\",\n";
    }

    void begin() {
        static constexpr const char* ports[] = {"din", "clk", "rst", "ce", "dout"};
        out_ << "    \"" << name_ << "\": {\n      \"attributes\": {\n";
        if (top_)
            out_ << "        \"top\": \"00000000000000000000000000000001\",\n";
        out_ << "        \"src\": \"rtl/top.v:1.1-999.10\"\n      },\n      \"ports\": {\n";
        for (size_t i = 0; i < 5; ++i) {
            out_ << "        \"" << ports[i] << "\": {\n          \"direction\": \""
                 << (i == 4 ? "output" : "input") << "\",\n          \"bits\": [ ";
            bits(wires_[i].first_bit, wires_[i].width);
            out_ << " ]\n        }" << (i < 4 ? ",\n" : "\n");
        }
        out_ << "      },\n      \"cells\": {";
    }

    void end() {
        out_ << "\n      },\n      \"netnames\": {\n";
        for (size_t i = 0; i < wires_.size(); ++i) {
            const Wire& wire = wires_[i];
            out_ << "        \"" << wire.name << "\": {\n          \"hide_name\": 0,\n          \"bits\": [ ";
            bits(wire.first_bit, wire.width);
            out_ << " ],\n          \"attributes\": {\n            \"src\": \"rtl/pipe.v:" << 20 + i % 4000
                 << ".7-" << 20 + i % 4000 << ".31\"\n          }\n        }"
                 << (i + 1 < wires_.size() ? ",\n" : "\n");
        }
        out_ << "      }\n    }";
    }

    void write_lut(uint64_t stage, uint64_t bit, const std::vector<uint64_t>& recent, uint64_t to) {
        const uint64_t inputs = 2 + random_.below(4); // LUT2 to LUT5
        begin_cell("stage" + std::to_string(stage) + "_lut[" + std::to_string(bit) + "]",
                   "LUT" + std::to_string(inputs));
        std::string init;
        for (uint64_t i = 0; i < (1ull << inputs); ++i)
            init += random_.below(2) ? '1' : '0';
        out_ << "          \"parameters\": {\n            \"INIT\": \"" << init << "\"\n          },\n";
        source(stage, bit);
        out_ << "          \"port_directions\": {\n";
        for (uint64_t i = 0; i < inputs; ++i)
            out_ << "            \"I" << i << "\": \"input\",\n";
        out_ << "            \"O\": \"output\"\n          },\n          \"connections\": {\n";
        for (uint64_t i = 0; i < inputs; ++i)
            out_ << "            \"I" << i << "\": [ " << recent[i == 0 ? bit : random_.below(bus_width)]
                 << " ],\n";
        out_ << "            \"O\": [ " << to << " ]\n          }\n        }";
    }

    void write_register(uint64_t stage, uint64_t bit, uint64_t from, uint64_t to) {
        const bool enabled = random_.below(2);
        begin_cell("stage" + std::to_string(stage) + "_reg[" + std::to_string(bit) + "]",
                   enabled ? "FDRE" : "FDR");
        out_ << "          \"parameters\": {\n            \"INIT\": \"0\"\n          },\n";
        source(stage, bit);
        out_
            << "          \"port_directions\": {\n            \"C\": \"input\",\n"
            << (enabled ? "            \"CE\": \"input\",\n" : "")
            << "            \"D\": \"input\",\n            \"R\": \"input\",\n            \"Q\": \"output\"\n"
               "          },\n          \"connections\": {\n            \"C\": [ "
            << clk_ << " ],\n";
        if (enabled)
            out_ << "            \"CE\": [ " << ce_ << " ],\n";
        out_ << "            \"D\": [ " << from << " ],\n            \"R\": [ ";
        if (random_.below(16))
            out_ << rst_;
        else
            out_ << "\"0\"";
        out_ << " ],\n            \"Q\": [ " << to << " ]\n          }\n        }";
    }

    void source(uint64_t stage, uint64_t bit) {
        const std::string line = std::to_string(20 + stage % 4000);
        attributes("rtl/pipe.v:" + line + "." + std::to_string(5 + bit) + "-" + line + ".72");
    }

    Writer& out_;
    Random& random_;
    std::string name_;
    bool top_;
    std::vector<Wire> wires_;
    uint64_t next_bit_ = 2;
    uint64_t cells_ = 0;
    uint64_t in_, clk_, rst_, ce_, dout_;
};

void write_netlist(std::FILE* file, uint64_t cells, bool hierarchical) {
    Writer out(file);
    Random random;
    out << "{\n  \"creator\": \"gen_netlist\",\n  \"modules\": {\n";
    if (!hierarchical) {
        Module(out, random, "top", true).write_leaf(cells);
    } else {
        std::vector<std::pair<std::string, std::string>> clusters, blocks;
        const auto end_cluster = [&] {
            const std::string name = "cluster" + std::to_string(clusters.size());
            Module(out, random, name, false).write_parent(blocks);
            out << ",\n";
            clusters.emplace_back("u_" + name, name);
            blocks.clear();
        };
        for (uint64_t done = 0, block = 0; done < cells; done += block_cells, ++block) {
            const std::string name = "block" + std::to_string(block);
            Module(out, random, name, false).write_leaf(std::min(block_cells, cells - done));
            out << ",\n";
            blocks.emplace_back("u_" + name, name);
            if (blocks.size() == cluster_blocks)
                end_cluster();
        }
        if (!blocks.empty())
            end_cluster();
        Module(out, random, "top", true).write_parent(clusters);
    }
    out << "\n  }\n}\n";
    if (!out.flush()) {
        std::perror("gen_netlist: cannot write");
        std::exit(1);
    }
}

} // namespace

int main(int argc, char** argv) {
    uint64_t cells = 1000000;
    bool hierarchical = false;
    std::FILE* file = stdout;
    for (int i = 1; i < argc; ++i) {
        const std::string_view word = argv[i];
        if (word == "--hierarchical") {
            hierarchical = true;
        } else if (word == "--cells" && i + 1 < argc) {
            cells = std::strtoull(argv[++i], nullptr, 10);
        } else if (word == "--output" && i + 1 < argc) {
            file = std::fopen(argv[++i], "wb");
            if (!file) {
                std::perror(argv[i]);
                return 1;
            }
        } else {
            std::fprintf(stderr, "usage: gen_netlist ?--cells N? ?--hierarchical? ?--output FILE?\n");
            return 2;
        }
    }
    if (cells < bus_width) {
        std::fprintf(stderr, "gen_netlist: --cells must be at least %d\n", static_cast<int>(bus_width));
        return 2;
    }
    write_netlist(file, cells, hierarchical);
    return file == stdout || std::fclose(file) == 0 ? 0 : 1;
}
