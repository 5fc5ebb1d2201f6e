#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/property/HATAttr.h"

/// The spec of one property of a class: its name, type, default and range, and how it may be used.
/// A new one describes a visible, read-only string property without default. Interpreter's thread.
class HATAttrSpec {
public:
    explicit HATAttrSpec(std::string name) : m_name(std::move(name)) {}

    const std::string& getName() const { return m_name; }
    void setName(const std::string& name) { m_name = name; }
    /// The class that the property belongs to.
    const std::string& getClassName() const { return m_className; }
    void setClassName(const std::string& name) { m_className = name; }
    HATAttrTypes::AttrType getAttrType() const { return m_type; }
    void setAttrType(HATAttrTypes::AttrType type) { m_type = type; }
    const std::string& getDescription() const { return m_description; }
    void setDescription(const std::string& text) { m_description = text; }
    bool isReadOnly() const { return m_readOnly; }
    void setReadOnly(bool on) { m_readOnly = on; }
    bool isVisible() const { return m_visible; }
    void setVisible(bool on) { m_visible = on; }
    /// True for a property that a user made from Tcl.
    bool isUserDefined() const { return m_userDefined; }
    void setUserDefined(bool on) { m_userDefined = on; }
    /// True once the property was taken out of its class; who still holds the spec sees it so.
    bool isDeleted() const { return m_deleted; }
    void setDeleted(bool on) { m_deleted = on; }

    /// The default, a value of the property's type; empty for none.
    const HATAttrAny& getDefault() const { return m_default; }
    bool hasDefault() const { return m_default.index() != 0; }
    void setDefault(HATAttrAny value) { m_default = std::move(value); }
    void setBoolDefault(bool value) { m_default = value; }
    void setIntDefault(int value) { m_default = value; }
    void setStringDefault(const std::string& value) { m_default = value; }
    void setEnumDefault(const std::string& word) { m_default = word; }
    void setFileDefault(const std::string& path) { m_default = path; }

    /// The words of an enumerated property; empty for any.
    const std::vector<std::string>& getEnumRange() const { return m_enumRange; }
    void addEnumRange(const std::string& word) { m_enumRange.push_back(word); }
    template <class Words>
    requires requires(const Words& words) {
        words.begin();
    } &&(!std::is_same_v<Words, std::string>)void addEnumRange(const Words& words) {
        m_enumRange.insert(m_enumRange.end(), words.begin(), words.end());
    }
    bool isEnumerated() const { return !m_enumRange.empty(); }

    /// The least and the greatest number that a property takes; nothing for any.
    const std::optional<std::pair<double, double>>& getRange() const { return m_range; }
    void setRange(double least, double greatest) { m_range.emplace(least, greatest); }
    bool isRangeset() const { return m_range.has_value(); }

    /// The extensions, without the dot, of the files that a file property takes; empty for any.
    const std::vector<std::string>& getFileExtRange() const { return m_fileExtensions; }
    void addFileExtRange(const std::string& extension) { m_fileExtensions.push_back(extension); }
    /// What a file browser calls these files.
    const std::string& getFileExtRangeDescription() const { return m_fileText; }
    void setFileExtRangeDescription(const std::string& text) { m_fileText = text; }

private:
    std::string m_name;
    std::string m_className;
    HATAttrTypes::AttrType m_type = HATAttrTypes::type_string;
    std::string m_description;
    bool m_readOnly = true;
    bool m_visible = true;
    bool m_userDefined = false;
    bool m_deleted = false;
    HATAttrAny m_default;
    std::vector<std::string> m_enumRange;
    std::optional<std::pair<double, double>> m_range;
    std::vector<std::string> m_fileExtensions;
    std::string m_fileText;
};
