#pragma once

#include <string>
#include <vector>

#include "platform/property/HATAttr.h"

/// The specification of one property of a class: its name, type, default and range, and how it may be used.
class HATAttrSpec {
public:
    explicit HATAttrSpec(std::string name) : m_name(std::move(name)) {}

    const std::string& getName() const { return m_name; }
    void setName(const std::string& name) { m_name = name; }
    HATAttrTypes::AttrType getAttrType() const { return m_type; }
    void setAttrType(HATAttrTypes::AttrType type) { m_type = type; }
    const std::string& getDescription() const { return m_description; }
    void setDescription(const std::string& text) { m_description = text; }
    bool isReadOnly() const { return m_readOnly; }
    void setReadOnly(bool on) { m_readOnly = on; }
    bool isVisible() const { return m_visible; }
    void setVisible(bool on) { m_visible = on; }
    bool isUserDefined() const { return m_userDefined; }
    void setUserDefined(bool on) { m_userDefined = on; }

    /// The default; empty for none.
    const HATAttrAny& getDefault() const { return m_default; }
    void setDefault(HATAttrAny value) { m_default = std::move(value); }
    /// The words of an enumerated property; empty for any.
    const std::vector<std::string>& getEnumRange() const { return m_enumRange; }
    void addEnumRange(const std::string& word) { m_enumRange.push_back(word); }

private:
    std::string m_name;
    HATAttrTypes::AttrType m_type = HATAttrTypes::type_string;
    std::string m_description;
    bool m_readOnly = true;
    bool m_visible = true;
    bool m_userDefined = false;
    HATAttrAny m_default;
    std::vector<std::string> m_enumRange;
};
