#include "design/NetlistWriter.h"

#include "design/Error.h"
#include "design/Property.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <map>
#include <sys/stat.h>
#include <unistd.h>
#include <zlib.h>

namespace design {

namespace {

[[noreturn]] void refuse(const std::string& path, const std::string& reason) {
    throw Error(Fault::unwritable_file, "Cannot write the netlist file '" + path + "': " + reason + ".");
}

/// A file that is built beside its place and takes it in one step; given up unless committed.
class ReplacedFile {
public:
    ReplacedFile(const std::string& path, bool overwrite) : path_(path), overwrite_(overwrite) {
        namespace fs = std::filesystem;
        std::error_code error;
        if (fs::is_directory(path, error))
            refuse(path_, "it is a directory");
        if (!overwrite && fs::exists(fs::symlink_status(path, error)))
            refuse(path_, "it exists already; the option -force replaces it");
        // A link is followed, so that the file it leads to is the one replaced.
        const fs::path real = fs::weakly_canonical(path, error);
        target_ = error || real.empty() ? path : real.string();
        temporary_ = target_ + ".XXXXXX";
        fd_ = ::mkostemp(temporary_.data(), O_CLOEXEC);
        if (fd_ < 0)
            refuse(path_, std::strerror(errno));
        struct stat status {};
        mode_t mode = 0666;
        if (::stat(target_.c_str(), &status) == 0) {
            mode = status.st_mode & 07777;
        } else {
            const mode_t mask = ::umask(0);
            ::umask(mask);
            mode &= ~mask;
        }
        ::fchmod(fd_, mode);
        if (path.ends_with(".gz")) {
            const int copy = ::fcntl(fd_, F_DUPFD_CLOEXEC, 0);
            zip_ = copy < 0 ? nullptr : gzdopen(copy, "wb6");
            if (!zip_)
                give_up("it cannot be compressed");
        }
    }
    ReplacedFile(const ReplacedFile&) = delete;
    ReplacedFile& operator=(const ReplacedFile&) = delete;
    ~ReplacedFile() { discard(); }

    void write(const char* text, size_t size) {
        while (size > 0) {
            const ssize_t n =
                zip_ ? gzwrite(zip_, text, static_cast<unsigned>(std::min<size_t>(size, 1u << 30)))
                     : ::write(fd_, text, size);
            if (n < 0 && errno == EINTR && !zip_)
                continue;
            if (n <= 0)
                give_up(std::strerror(errno));
            text += n;
            size -= static_cast<size_t>(n);
        }
    }

    void commit() {
        if (zip_ && gzclose(std::exchange(zip_, nullptr)) != Z_OK)
            give_up(std::strerror(errno));
        if (::fsync(fd_) != 0 || ::close(std::exchange(fd_, -1)) != 0)
            give_up(std::strerror(errno));
        // A name taken meanwhile is respected unless overwriting was asked for.
        const int done = overwrite_ ? ::rename(temporary_.c_str(), target_.c_str())
                                    : ::link(temporary_.c_str(), target_.c_str());
        if (done != 0)
            give_up(std::strerror(errno));
        if (!overwrite_)
            ::unlink(temporary_.c_str());
        temporary_.clear();
        const std::string directory = std::filesystem::path(target_).parent_path().string();
        const int folder =
            ::open(directory.empty() ? "." : directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (folder >= 0) {
            ::fsync(folder);
            ::close(folder);
        }
    }

private:
    [[noreturn]] void give_up(const std::string& reason) {
        discard();
        refuse(path_, reason);
    }

    void discard() noexcept {
        if (zip_)
            gzclose(std::exchange(zip_, nullptr));
        if (fd_ >= 0)
            ::close(std::exchange(fd_, -1));
        if (!temporary_.empty())
            ::unlink(temporary_.c_str());
        temporary_.clear();
    }

    std::string path_, target_, temporary_;
    bool overwrite_;
    int fd_ = -1;
    gzFile zip_ = nullptr;
};

/// JSON in the layout that Yosys gives it.
class JsonText {
public:
    explicit JsonText(ReplacedFile& file) : file_(file) { text_.reserve(2 * flush_at); }

    JsonText& operator<<(std::string_view text) {
        text_ += text;
        if (text_.size() > flush_at)
            flush();
        return *this;
    }
    JsonText& operator<<(uint32_t n) {
        char digits[16];
        return *this << std::string_view(
                   digits,
                   static_cast<size_t>(std::to_chars(digits, digits + sizeof digits, n).ptr - digits));
    }

    JsonText& quoted(std::string_view text) {
        static constexpr char hex[] = "0123456789abcdef";
        text_ += '"';
        for (const char c : text) {
            if (c == '"' || c == '\\') {
                text_ += '\\';
                text_ += c;
            } else if (static_cast<unsigned char>(c) < 0x20) {
                text_ += "\\u00";
                text_ += hex[c >> 4];
                text_ += hex[c & 15];
            } else {
                text_ += c;
            }
        }
        return *this << "\"";
    }

    void flush() {
        file_.write(text_.data(), text_.size());
        text_.clear();
    }

private:
    static constexpr size_t flush_at = 1 << 20;
    ReplacedFile& file_;
    std::string text_;
};

/// Writes the separators of a list: nothing before the first item, a comma before the others.
class Comma {
public:
    std::string_view operator()() { return std::exchange(first_, false) ? "\n" : ",\n"; }
    bool empty() const { return first_; }

private:
    bool first_ = true;
};

class Writer {
public:
    Writer(const Design& design, ReplacedFile& file) : d_(design), n_(design.netlist()), out_(file) {
        place_values();
    }

    void write() {
        out_ << "{";
        Comma comma;
        if (n_.creator != none) {
            out_ << comma() << "  \"creator\": ";
            out_.quoted(n_.names.text(n_.creator));
        }
        out_ << comma() << "  \"modules\": {";
        Comma next;
        for (uint32_t i = 0; i < n_.modules.size(); ++i) {
            out_ << next();
            write_module(i);
        }
        out_ << "\n  }\n}\n";
        out_.flush();
    }

private:
    using Overrides = std::vector<std::pair<NameId, NameId>>;

    // Sorts what was set on objects into attributes of their own and the list of the rest.
    void place_values() {
        std::vector<uint32_t> uses(n_.modules.size());
        for (const Design::Scope& scope : d_.scopes())
            ++uses[scope.module];
        const Netlist::Module& top = d_.module_of(d_.scopes()[0]);
        for (const auto& [key, values] : d_.all_values()) {
            const auto [cls, property] = key;
            const std::map<uint32_t, NameId> in_order(values.begin(), values.end());
            for (const auto& [index, value] : in_order) {
                if (cls == ObjectClass::cell) {
                    const Cell& cell = *d_.object<Cell>(index);
                    const Design::Scope& scope = d_.scopes()[cell.parent_scope()];
                    if (uses[scope.module] == 1) {
                        cell_values_[d_.module_of(scope).cells.first + (index - scope.first_cell)]
                            .emplace_back(property, value);
                        continue;
                    }
                } else if (cls == ObjectClass::net) {
                    const Net& net = *d_.object<Net>(index);
                    const Design::Scope& scope = d_.scopes()[net.scope()];
                    const Netlist::Wire* wire = net.wire();
                    const bool shared = !wire || wire->width != 1 || uses[scope.module] != 1 ||
                                        (net.scope() == 0 && n_.find_port(top, wire->name) != none);
                    if (!shared) {
                        wire_values_[net.record().wire].emplace_back(property, value);
                        continue;
                    }
                } else if (cls == ObjectClass::design) {
                    design_values_.emplace_back(property, value);
                    continue;
                }
                const ObjectRef object = cls == ObjectClass::cell  ? ObjectRef(d_.object<Cell>(index))
                                         : cls == ObjectClass::net ? ObjectRef(d_.object<Net>(index))
                                         : cls == ObjectClass::pin ? ObjectRef(d_.object<Pin>(index))
                                                                   : ObjectRef(d_.object<Port>(index));
                append_line(class_name(cls), n_.names.text(property), object.name(), n_.names.text(value));
            }
        }
    }

    void append_line(std::string_view cls, std::string_view property, std::string_view name,
                     std::string_view value) {
        for (const std::string_view field : {cls, property, name, value}) {
            for (const char c : field)
                switch (c) {
                case '\t':
                    other_values_ += "\\t";
                    break;
                case '\n':
                    other_values_ += "\\n";
                    break;
                case '\\':
                    other_values_ += "\\\\";
                    break;
                default:
                    other_values_ += c;
                }
            other_values_ += '\t';
        }
        other_values_.back() = '\n';
    }

    static const Overrides* find_values(const std::unordered_map<uint32_t, Overrides>& values, uint32_t key) {
        const auto it = values.find(key);
        return it == values.end() ? nullptr : &it->second;
    }

    /// What was set over one set of the file. A name that is a parameter and no attribute is set as a
    /// parameter, any other as an attribute.
    Overrides belonging(const Overrides* all, uint32_t attributes, uint32_t parameters,
                        bool as_parameters) const {
        Overrides result;
        if (all)
            for (const auto& pair : *all)
                if (as_parameters == (n_.value_in_set(parameters, pair.first) != none &&
                                      n_.value_in_set(attributes, pair.first) == none))
                    result.push_back(pair);
        return result;
    }

    void begin_value(Comma& comma, std::string_view indent, std::string_view name) {
        out_ << comma() << indent << "  ";
        out_.quoted(name) << ": ";
    }

    // The values of the file, but for those that are set anew and the one named `left_out`; then those.
    void write_values(Comma& comma, std::string_view indent, ObjectClass cls, uint32_t set,
                      const Overrides& overrides, NameId left_out = none) {
        for (uint32_t i = 0; i < n_.sets[set]; ++i) {
            const NameId name = n_.sets[set + 1 + 2 * size_t(i)];
            const uint32_t value = n_.sets[set + 2 + 2 * size_t(i)];
            if (name == left_out || std::any_of(overrides.begin(), overrides.end(),
                                                [&](const auto& pair) { return pair.first == name; }))
                continue;
            begin_value(comma, indent, n_.names.text(name));
            if (value & Netlist::number_flag)
                out_ << n_.names.text(value & ~Netlist::number_flag);
            else
                out_.quoted(n_.names.text(value));
        }
        for (const auto& [name, value] : overrides) {
            begin_value(comma, indent, n_.names.text(name));
            out_.quoted(file_text(cls, name, n_.names.text(value), n_.value_in_set(set, name)));
        }
    }

    // A value that was set, in the form of the file: whole numbers as binary digits where a number is due.
    std::string file_text(ObjectClass cls, NameId name, std::string_view text, uint32_t before) const {
        const PropertySpec* spec = property_registry().find(cls, n_.names.text(name));
        const bool is_number =
            spec ? spec->type == ValueType::boolean || spec->type == ValueType::integer
                 : before != none && parse_file_integer(n_.names.text(before & ~Netlist::number_flag));
        const std::optional<std::string> bits = is_number ? file_integer(text) : std::nullopt;
        return bits ? *bits : guarded(text);
    }

    void write_set(std::string_view indent, std::string_view title, ObjectClass cls, uint32_t set,
                   const Overrides& overrides) {
        Comma comma;
        out_ << indent << "\"" << title << "\": {";
        write_values(comma, indent, cls, set, overrides);
        out_ << "\n" << indent << "}";
    }

    // The attribute "top" goes to the module that is the top of this design, so that it is found again.
    void write_module_attributes(const Netlist::Module& m, bool top) {
        constexpr std::string_view indent = "      ";
        Comma comma;
        out_ << indent << "\"attributes\": {";
        write_values(comma, indent, ObjectClass::design, m.attributes,
                     belonging(top ? &design_values_ : nullptr, m.attributes, m.parameters, false),
                     n_.names.find("top"));
        if (top) {
            begin_value(comma, indent, "top");
            out_.quoted(*file_integer("1"));
        }
        if (top && !other_values_.empty()) {
            begin_value(comma, indent, object_values_attribute);
            out_.quoted(other_values_);
        }
        out_ << "\n" << indent << "}";
    }

    // A text of binary digits would be read as bits by other tools; a blank at its end marks it as a text.
    static std::string guarded(std::string_view text) {
        const size_t digits = text.find_first_not_of("01xz");
        if (digits == std::string_view::npos || text.find_first_not_of(' ', digits) == std::string_view::npos)
            return std::string(text) + " ";
        return std::string(text);
    }

    void write_bit(const Netlist::Module& m, uint32_t net) {
        const Netlist::Net& record = n_.nets[m.nets.first + net];
        if (record.wire == none)
            out_ << "\"" << Netlist::constant_bits[record.bit] << "\"";
        else
            out_ << net + 2;
    }

    // A list of bits without the unconnected ones, which come last if there are any.
    void write_bits(const Netlist::Module& m, const ChunkVector<uint32_t>& bits, uint32_t first,
                    uint32_t count) {
        out_ << "[ ";
        for (uint32_t i = 0; i < count && bits[first + i] != none; ++i) {
            out_ << (i ? ", " : "");
            write_bit(m, bits[first + i]);
        }
        out_ << " ]";
    }

    void write_range(std::string_view indent, int32_t offset, bool upto, bool is_signed) {
        if (offset != 0)
            out_ << indent << "\"offset\": " << std::to_string(offset) << ",\n";
        if (upto)
            out_ << indent << "\"upto\": 1,\n";
        if (is_signed)
            out_ << indent << "\"signed\": 1,\n";
    }

    static std::string_view direction_word(Direction direction) {
        return direction == Direction::input    ? "\"input\""
               : direction == Direction::output ? "\"output\""
                                                : "\"inout\"";
    }

    void write_module(uint32_t number) {
        const Netlist::Module& m = n_.modules[number];
        const bool top = d_.scopes()[0].module == number;
        out_ << "    ";
        out_.quoted(n_.names.text(m.name)) << ": {\n";
        write_module_attributes(m, top);
        out_ << ",\n";
        if (n_.sets[m.parameters] > 0) {
            write_set("      ", "parameter_default_values", ObjectClass::design, m.parameters,
                      belonging(top ? &design_values_ : nullptr, m.attributes, m.parameters, true));
            out_ << ",\n";
        }
        out_ << "      \"ports\": {";
        Comma port_comma;
        for (uint32_t p = m.ports.first; p < m.ports.first + m.ports.count; ++p) {
            const Netlist::Port& port = n_.ports[p];
            out_ << port_comma() << "        ";
            out_.quoted(n_.names.text(port.name))
                << ": {\n          \"direction\": " << direction_word(port.direction) << ",\n";
            write_range("          ", port.offset, port.upto, port.is_signed);
            out_ << "          \"bits\": ";
            write_bits(m, n_.bits, port.bits, port.width);
            out_ << "\n        }";
        }
        out_ << "\n      },\n      \"cells\": {";
        Comma cell_comma;
        for (uint32_t c = m.cells.first; c < m.cells.first + m.cells.count; ++c) {
            out_ << cell_comma();
            write_cell(m, c);
        }
        out_ << "\n      },\n      \"netnames\": {";
        Comma wire_comma;
        for (uint32_t w = m.wires.first; w < m.wires.first + m.wires.count; ++w) {
            const Netlist::Wire& wire = n_.wires[w];
            out_ << wire_comma() << "        ";
            out_.quoted(n_.names.text(wire.name))
                << ": {\n          \"hide_name\": " << (wire.hidden ? "1" : "0") << ",\n          \"bits\": ";
            write_bits(m, n_.bits, wire.bits, wire.width);
            out_ << ",\n";
            write_range("          ", wire.offset, wire.upto, wire.is_signed);
            write_set("          ", "attributes", ObjectClass::net, wire.attributes,
                      belonging(find_values(wire_values_, w), wire.attributes, 0, false));
            out_ << "\n        }";
        }
        out_ << "\n      }\n    }";
    }

    void write_cell(const Netlist::Module& m, uint32_t number) {
        const Netlist::Cell& cell = n_.cells[number];
        const Shape& shape = n_.shapes[cell.shape];
        out_ << "        ";
        out_.quoted(n_.names.text(cell.name))
            << ": {\n          \"hide_name\": " << (cell.hidden ? "1" : "0") << ",\n          \"type\": ";
        out_.quoted(n_.names.text(shape.type)) << ",\n";
        const Overrides* values = find_values(cell_values_, number);
        write_set("          ", "parameters", ObjectClass::cell, cell.parameters,
                  belonging(values, cell.attributes, cell.parameters, true));
        out_ << ",\n";
        write_set("          ", "attributes", ObjectClass::cell, cell.attributes,
                  belonging(values, cell.attributes, cell.parameters, false));
        out_ << ",\n          \"port_directions\": {";
        Comma direction_comma;
        for (const Shape::Port& port : shape.ports)
            if (port.direction != Direction::unknown) {
                out_ << direction_comma() << "            ";
                out_.quoted(n_.names.text(port.name)) << ": " << direction_word(port.direction);
            }
        out_ << "\n          },\n          \"connections\": {";
        Comma connection_comma;
        for (const Shape::Port& port : shape.ports) {
            out_ << connection_comma() << "            ";
            out_.quoted(n_.names.text(port.name)) << ": ";
            write_bits(m, n_.pins, cell.pins + port.first_pin, port.width);
        }
        out_ << "\n          }\n        }";
    }

    const Design& d_;
    const Netlist& n_;
    JsonText out_;
    std::unordered_map<uint32_t, Overrides> cell_values_, wire_values_;
    Overrides design_values_;
    std::string other_values_;
};

} // namespace

void write_netlist(const Design& design, const std::string& path, bool overwrite) {
    design.require_open();
    ReplacedFile file(path, overwrite);
    Writer(design, file).write();
    file.commit();
}

} // namespace design
