#pragma once

#include <string>
#include <variant>
#include <vector>

/// The types of property values. The numbers are part of the interface.
namespace HATAttrTypes {

enum AttrType {
    type_bool = 0,
    type_int = 1,
    type_double = 2,
    type_string = 3,
    type_int_list = 4,
    type_double_list = 5,
    type_string_list = 6,
    type_enum = 9,
    type_file = 10,
    type_long = 12
};

} // namespace HATAttrTypes

/// A value of any property type; empty before one is set. Words of an enumeration and file names are strings.
/// Texts are in the system encoding.
using HATAttrAny = std::variant<std::monostate, bool, int, long, double, std::string, std::vector<int>,
                                std::vector<double>, std::vector<std::string>>;

/// Where a value was set: a script and a line, or nothing known.
struct HATAttrSrcInfo {
    std::string file;
    int line = 0;
};

class HATAttrSrcInfoMgr {
public:
    /// Where the value that is being set now comes from.
    static HATAttrSrcInfo getSrcInfo() { return {}; }
};

/// A typed property value.
class HATAttr {
public:
    HATAttr(HATAttrSrcInfo source, HATAttrTypes::AttrType type) : m_source(std::move(source)), m_type(type) {}

    HATAttrTypes::AttrType getType() const { return m_type; }
    const HATAttrSrcInfo& getSource() const { return m_source; }
    const HATAttrAny& getValue() const { return m_value; }
    void setValue(HATAttrAny value) { m_value = std::move(value); }
    void setStringVal(const std::string& value) { m_value = value; }

private:
    HATAttrSrcInfo m_source;
    HATAttrTypes::AttrType m_type;
    HATAttrAny m_value;
};
