#include "design/Property.h"

#include "design/Design.h"
#include "design/Error.h"
#include "design/PropertyTables.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <strings.h>

namespace design {

namespace {

constexpr const char* type_names[] = {"bool", "int", "double", "string", "enum"};

bool same_but_case(std::string_view a, std::string_view b) {
    return a.size() == b.size() && ::strncasecmp(a.data(), b.data(), a.size()) == 0;
}

std::optional<int64_t> parse_integer(std::string_view text) {
    const bool negative = text.starts_with('-');
    std::string_view digits = text.substr(negative || text.starts_with('+'));
    const bool hex = digits.starts_with("0x") || digits.starts_with("0X");
    uint64_t value = 0;
    if (hex)
        digits.remove_prefix(2);
    const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), value, hex ? 16 : 10);
    if (digits.empty() || result.ec != std::errc() || result.ptr != digits.data() + digits.size())
        return {};
    if (value > uint64_t(INT64_MAX) + negative)
        return {};
    return negative ? static_cast<int64_t>(0 - value) : static_cast<int64_t>(value);
}

std::optional<double> parse_real(std::string_view text) {
    double value = 0;
    const std::string_view digits = text.substr(text.starts_with('+'));
    const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (digits.empty() || result.ec != std::errc() || result.ptr != digits.data() + digits.size() ||
        !std::isfinite(value))
        return {};
    return value;
}

std::optional<bool> parse_bool(std::string_view text) {
    for (const char* word : {"1", "true", "yes", "on"})
        if (same_but_case(text, word))
            return true;
    for (const char* word : {"0", "false", "no", "off"})
        if (same_but_case(text, word))
            return false;
    return {};
}

// A text that only looks like bits has a blank at its end in the file, which is no part of it.
std::string_view without_guard(std::string_view text) {
    const size_t last = text.find_last_not_of(' ');
    if (last == std::string_view::npos || last + 1 == text.size())
        return text;
    for (const char c : text.substr(0, last + 1))
        if (c != '0' && c != '1' && c != 'x' && c != 'z')
            return text;
    return text.substr(0, text.size() - 1);
}

std::string real_text(double value) {
    char text[64];
    return {text, std::to_chars(text, text + sizeof text, value).ptr};
}

bool same_spec(const PropertySpec& a, const PropertySpec& b) {
    return a.type == b.type && a.name == b.name;
}

} // namespace

std::optional<int64_t> parse_file_integer(std::string_view text) {
    if (text.size() != 32)
        return {};
    uint32_t value = 0;
    for (const char c : text) {
        if (c != '0' && c != '1')
            return {};
        value = value << 1 | (c == '1');
    }
    return static_cast<int32_t>(value);
}

std::optional<std::string> file_integer(std::string_view decimal) {
    const auto value = parse_integer(decimal);
    if (!value || *value < INT32_MIN || *value > INT32_MAX)
        return {};
    std::string text(32, '0');
    for (int i = 0; i < 32; ++i)
        if (*value >> i & 1)
            text[static_cast<size_t>(31 - i)] = '1';
    return text;
}

const char* value_type_name(ValueType type) {
    return type_names[static_cast<size_t>(type)];
}

std::optional<ValueType> value_type_of(std::string_view name) {
    for (size_t i = 0; i < std::size(type_names); ++i)
        if (same_but_case(name, type_names[i]))
            return static_cast<ValueType>(i);
    return {};
}

std::string Value::to_text() const {
    switch (type) {
    case ValueType::boolean:
    case ValueType::integer:
        return std::to_string(integer);
    case ValueType::real:
        return real_text(real);
    default:
        return text;
    }
}

std::string PropertySpec::checked(std::string_view text) const {
    const auto refuse = [&](const std::string& accepted) {
        throw Error(Fault::bad_property_value, "'" + std::string(text.substr(0, 200)) +
                                                   "' is no value for the property '" + name +
                                                   "', which takes " + accepted + ".");
    };
    switch (type) {
    case ValueType::boolean:
        if (const auto value = parse_bool(text))
            return *value ? "1" : "0";
        refuse("a bool: '1', '0', 'true' or 'false'");
        break;
    case ValueType::integer:
        if (const auto value = parse_integer(text))
            return std::to_string(*value);
        refuse("a whole number of at most 64 bits");
        break;
    case ValueType::real:
        if (const auto value = parse_real(text))
            return real_text(*value);
        refuse("a number");
        break;
    case ValueType::enumeration: {
        for (const std::string& value : enum_values)
            if (value == text)
                return value;
        std::string accepted = "one of";
        for (const std::string& value : enum_values)
            accepted += (&value == &enum_values.front() ? " '" : ", '") + value + "'";
        refuse(accepted);
        break;
    }
    case ValueType::string:
        break;
    }
    return std::string(text);
}

PropertyRegistry::PropertyRegistry() {
    for (size_t c = 0; c < object_class_count; ++c)
        for (PropertySpec& spec : built_in_properties(static_cast<ObjectClass>(c)))
            specs_[c].push_back(std::make_unique<PropertySpec>(std::move(spec)));
}

const PropertySpec* PropertyRegistry::find(ObjectClass cls, std::string_view name) const {
    const PropertySpec* near = nullptr;
    for (const auto& spec : specs_[static_cast<size_t>(cls)]) {
        if (spec->name == name)
            return spec.get();
        if (!near && same_but_case(spec->name, name))
            near = spec.get();
    }
    return near;
}

std::vector<const PropertySpec*> PropertyRegistry::list(ObjectClass cls) const {
    std::vector<const PropertySpec*> result;
    for (const auto& spec : specs_[static_cast<size_t>(cls)])
        result.push_back(spec.get());
    return result;
}

const PropertySpec& PropertyRegistry::create(ObjectClass cls, PropertySpec spec) {
    const std::string where = "The property '" + spec.name + "' of the class '" + class_name(cls) + "'";
    if (spec.name.empty())
        throw Error(Fault::bad_property, "A property needs a name that is not empty.");
    if (const PropertySpec* other = find(cls, spec.name)) {
        if (other->user_defined && same_spec(*other, spec))
            return *other;
        throw Error(Fault::bad_property, where + " exists already, as '" + other->name + "' of the type " +
                                             value_type_name(other->type) + ".");
    }
    if (spec.type == ValueType::enumeration && spec.enum_values.empty())
        throw Error(Fault::bad_property, where + " is an enum and needs values.");
    if (spec.default_value)
        spec.default_value = spec.checked(*spec.default_value);
    spec.user_defined = true;
    spec.number = nullptr;
    spec.interned = nullptr;
    spec.append = nullptr;
    ++generation_;
    return *specs_[static_cast<size_t>(cls)].emplace_back(std::make_unique<PropertySpec>(std::move(spec)));
}

bool PropertyRegistry::remove(ObjectClass cls, std::string_view name) {
    ++generation_;
    return std::erase_if(specs_[static_cast<size_t>(cls)],
                         [&](const auto& spec) { return spec->user_defined && spec->name == name; }) > 0;
}

PropertyRegistry& property_registry() {
    static PropertyRegistry& registry = *new PropertyRegistry;
    return registry;
}

PropertyReader::PropertyReader(const Design& design, ObjectClass cls, std::string_view name)
    : design_(&design), cls_(cls), spec_(property_registry().find(cls, name)) {
    const Netlist& n = design.netlist();
    if (spec_ && !spec_->is_stored())
        return;
    name_ = n.names.find(spec_ ? std::string_view(spec_->name) : name);
    if (name_ == none)
        return;
    attribute_ = design.has_attribute(cls, name_);
    values_ = design.values(cls, name_);
}

std::optional<ValueType> PropertyReader::type() const {
    return spec_ ? std::optional(spec_->type) : std::nullopt;
}

// The text of a stored property that is set or stands in the file.
NameId PropertyReader::read_interned(uint32_t index) const {
    if (spec_ && spec_->interned)
        return spec_->interned(*design_, index);
    if (values_)
        if (const auto it = values_->find(index); it != values_->end())
            return it->second | set_flag;
    if (!attribute_)
        return none;
    const Design::Sets sets = design_->sets_of(cls_, index);
    uint32_t value = design_->netlist().value_in_set(sets.attributes, name_);
    if (value == none)
        value = design_->netlist().value_in_set(sets.parameters, name_);
    return value == none ? none : value & ~Netlist::number_flag;
}

std::optional<std::string_view> PropertyReader::read_text(uint32_t index, std::string& buffer) const {
    if (spec_ && spec_->append) {
        buffer.clear();
        spec_->append(*design_, index, buffer);
        return buffer;
    }
    if (spec_ && spec_->number) {
        const int64_t number = spec_->number(*design_, index);
        buffer = spec_->type == ValueType::enumeration ? spec_->enum_values[static_cast<size_t>(number)]
                                                       : std::to_string(number);
        return buffer;
    }
    return text_of(read_interned(index), buffer);
}

std::optional<std::string_view> PropertyReader::text_of(NameId id, std::string& buffer) const {
    if (id == none) {
        if (spec_ && spec_->default_value)
            return *spec_->default_value;
        return spec_ && spec_->interned ? std::optional<std::string_view>("") : std::nullopt;
    }
    const std::string_view text = design_->netlist().names.text(id & ~set_flag);
    if ((id & set_flag) || (spec_ && spec_->interned))
        return text;
    if (!spec_ || spec_->type != ValueType::string) {
        if (const auto integer = parse_file_integer(text)) {
            buffer = std::to_string(*integer);
            return buffer;
        }
    }
    return without_guard(text);
}

std::optional<double> PropertyReader::read_number(uint32_t index) const {
    if (spec_ && spec_->number)
        return static_cast<double>(spec_->number(*design_, index));
    std::string buffer;
    const auto text = read_text(index, buffer);
    return text ? parse_real(*text) : std::nullopt;
}

bool PropertyReader::read(uint32_t index, Value& value) const {
    value.type = spec_ ? spec_->type : ValueType::string;
    if (spec_ && spec_->number && spec_->type != ValueType::enumeration) {
        value.integer = spec_->number(*design_, index);
        return true;
    }
    const auto text = read_text(index, value.text);
    if (!text)
        return false;
    if (text->data() != value.text.data())
        value.text.assign(*text);
    // What the file holds need not fit the type of the property; then it is shown as it is.
    const auto keep_text = [&](bool fits) {
        if (!fits)
            value.type = ValueType::string;
    };
    if (value.type == ValueType::boolean) {
        const auto flag = parse_bool(value.text);
        keep_text(flag.has_value());
        value.integer = flag.value_or(false);
    } else if (value.type == ValueType::integer) {
        const auto integer = parse_integer(value.text);
        keep_text(integer.has_value());
        value.integer = integer.value_or(0);
    } else if (value.type == ValueType::real) {
        const auto real = parse_real(value.text);
        keep_text(real.has_value());
        value.real = real.value_or(0);
    } else if (!spec_) {
        const NameId id = read_interned(index);
        if (id != none && !(id & set_flag))
            if (const auto integer = parse_file_integer(design_->netlist().names.text(id))) {
                value.type = ValueType::integer;
                value.integer = *integer;
            }
    }
    return true;
}

std::optional<Value> get_property(const ObjectRef& object, std::string_view name) {
    const Design& design = object.design();
    const PropertyReader reader(design, object.object_class(), name);
    if (!reader.known())
        throw_no_such_property(design, object.object_class(), name);
    Value value;
    if (!reader.read(object.index(), value))
        return {};
    return value;
}

std::vector<std::string> list_properties(const ObjectRef& object) {
    const Design& design = object.design();
    const Netlist& n = design.netlist();
    std::vector<std::string> names;
    for (const PropertySpec* spec : property_registry().list(object.object_class()))
        names.push_back(spec->name);
    const auto add = [&](NameId name) {
        if (!property_registry().find(object.object_class(), n.names.text(name)))
            names.emplace_back(n.names.text(name));
    };
    const Design::Sets sets = design.sets_of(object.object_class(), object.index());
    for (const uint32_t set : {sets.attributes, sets.parameters})
        for (uint32_t i = 0; i < n.sets[set]; ++i)
            add(n.sets[set + 1 + 2 * size_t(i)]);
    for (const auto& [key, values] : design.all_values())
        if (key.first == object.object_class() && values.contains(object.index()))
            add(key.second);
    std::sort(names.begin(), names.end());
    names.erase(std::unique(names.begin(), names.end()), names.end());
    return names;
}

PropertyChange PropertyChange::change(std::span<const ObjectRef> objects, std::string_view name,
                                      const std::string* value) {
    if (name.empty())
        throw Error(Fault::bad_property, "A property needs a name that is not empty.");
    // One text and one name for each class and each design; the last seen serves most objects.
    struct Target {
        Design* design;
        ObjectClass cls;
        std::string name;
        std::string value;
    };
    std::vector<Target> targets;
    const auto target_of = [&](const ObjectRef& object) -> const Target& {
        Design& design = object.design();
        for (const Target& target : targets)
            if (target.design == &design && target.cls == object.object_class())
                return target;
        const PropertySpec* spec = property_registry().find(object.object_class(), name);
        if (spec && (spec->read_only || !spec->is_stored()))
            throw Error(Fault::read_only_property, "The property '" + spec->name + "' of the class '" +
                                                       class_name(object.object_class()) +
                                                       "' is read-only and cannot be changed.");
        Target target{
            &design, object.object_class(), std::string(spec ? std::string_view(spec->name) : name), {}};
        if (value)
            target.value = spec ? spec->checked(*value) : *value;
        return targets.emplace_back(std::move(target));
    };
    for (const ObjectRef& object : objects)
        target_of(object);
    PropertyChange result;
    result.entries_.reserve(objects.size());
    for (const ObjectRef& object : objects) {
        const Target& target = target_of(object);
        NameTable& names = target.design->netlist().names;
        const NameId property = names.intern(target.name);
        const Design::Values* values = target.design->values(target.cls, property);
        const auto it = values ? values->find(object.index()) : Design::Values::const_iterator();
        const NameId before = values && it != values->end() ? it->second : none;
        result.entries_.push_back({object, property, before, value ? names.intern(target.value) : none});
        // At once, so that an object that stands twice in the list is recorded in the order of events.
        Design::Values& changed = target.design->values_for_change(target.cls, property);
        if (value)
            changed[object.index()] = result.entries_.back().after;
        else
            changed.erase(object.index());
    }
    return result;
}

namespace {

void put(const ObjectRef& object, NameId property, NameId value) {
    if (!object.is_alive())
        return;
    Design::Values& values = object.design().values_for_change(object.object_class(), property);
    if (value == none)
        values.erase(object.index());
    else
        values[object.index()] = value;
}

} // namespace

void PropertyChange::undo() {
    for (auto entry = entries_.rbegin(); entry != entries_.rend(); ++entry)
        put(entry->object, entry->property, entry->before);
}

void PropertyChange::redo() {
    for (const Entry& entry : entries_)
        put(entry.object, entry.property, entry.after);
}

PropertyChange set_property(std::span<const ObjectRef> objects, std::string_view name,
                            std::string_view value) {
    const std::string text(value);
    return PropertyChange::change(objects, name, &text);
}

PropertyChange reset_property(std::span<const ObjectRef> objects, std::string_view name) {
    return PropertyChange::change(objects, name, nullptr);
}

namespace {

// Edits that turn one word into the other, letters compared without case; stops counting beyond `limit`.
size_t edit_distance(std::string_view a, std::string_view b, size_t limit) {
    if (a.size() > b.size() + limit || b.size() > a.size() + limit)
        return limit + 1;
    std::vector<size_t> row(b.size() + 1);
    for (size_t j = 0; j <= b.size(); ++j)
        row[j] = j;
    for (size_t i = 1; i <= a.size(); ++i) {
        size_t diagonal = row[0];
        row[0] = i;
        for (size_t j = 1; j <= b.size(); ++j) {
            const bool same = std::tolower(static_cast<unsigned char>(a[i - 1])) ==
                              std::tolower(static_cast<unsigned char>(b[j - 1]));
            const size_t replaced = diagonal + !same;
            diagonal = row[j];
            row[j] = std::min({row[j] + 1, row[j - 1] + 1, replaced});
        }
    }
    return row[b.size()];
}

} // namespace

std::string nearest_property_hint(const Design& design, ObjectClass cls, std::string_view name) {
    constexpr size_t longest = 64;
    if (name.size() > longest)
        return {};
    const size_t limit = name.size() <= 3 ? 1 : name.size() <= 8 ? 2 : 3;
    size_t best = limit + 1;
    std::string nearest;
    const auto consider = [&](std::string_view candidate) {
        const size_t distance = edit_distance(name, candidate, limit);
        if (distance < best) {
            best = distance;
            nearest = candidate;
        }
    };
    for (const PropertySpec* spec : property_registry().list(cls))
        consider(spec->name);
    for (const NameId id : design.attribute_names(cls))
        consider(design.netlist().names.text(id));
    return nearest.empty() ? "" : " Did you mean '" + nearest + "'?";
}

void throw_no_such_property(const Design& design, ObjectClass cls, std::string_view name) {
    throw Error(Fault::no_such_property, "No object of the class '" + std::string(class_name(cls)) +
                                             "' has a property '" + std::string(name.substr(0, 200)) + "'." +
                                             nearest_property_hint(design, cls, name));
}

} // namespace design
