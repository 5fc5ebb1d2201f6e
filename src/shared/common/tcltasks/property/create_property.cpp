// create_property ?-type WORD? ?-description TEXT? ?-default_value TEXT? ?-enum_values LIST? ... NAME CLASS
// Adds a property of the user's to a class of objects; the same again is no error. Can be undone.
#include "platform/msg/ComMsgMgr.h"
#include "platform/msg/HEX.h"
#include "tcltasks/property/detail/options.h"

using namespace vek::tcltasks;
using namespace HCPProperty;
using namespace HTCProperty::detail;

namespace create_property {

namespace {

HATAttrTypes::AttrType GetAttrType(const std::string& word) {
    if (const auto type = HATAttrUtils::getAttrType(word)) {
        return *type;
    }
    throw HEXError(ComMsgMgrInstance("common", ComMsgMgr::MSGTYPE_ERROR, "@17-129@%s\n", word));
}

} // namespace

class task : public HTCITaskHelper<task, has_undo> {
public:
    static constexpr const char* command = "common::create_property";

    static void load_description() {
        in_categories("PropertyAndParameter", "TDC");
        description_instance("Create property for class of objects(s)",
                             "The property that was created if success, \"\" if failure")
            .add_options()
            .add_option("name", options::value<std::string>(), "Name of property to create")
            .required()
            .add_option("description", options::text(), "Description of property")
            .add_option(
                "type", options::text("string"),
                "Type of property to create; valid values are: string, int, long, double, bool, enum, file")
            .hint("string|int|long|double|bool|enum|file")
            .add_option("enum_values", strings_option(), "Enumeration values")
            .add_option("default_value", options::text(), "Default value of type string")
            .add_option("file_types", strings_option(), "File type extensions (without the dot)")
            .add_option("display_text", options::text(),
                        "Text to display when selecting the file in file browser")
            .add_option("class", options::value<std::string>(),
                        "Object type to create property for; valid values are: design, net, cell, pin, port, "
                        "pblock, interface, fileset")
            .hint("class")
            .required()
            .add_option("no_register", options::flag(), "Donot register spec");
        positional_instance().add("name", 1).add("class", 1);
    }
    std::string owner() const override { return "common"; }

    int execute(Tcl_Interp* interp) override {
        m_name = get_option<std::string>("name");
        m_description = get_option<std::string>("description");
        m_class = get_option<std::string>("class");
        m_type = get_option<std::string>("type");
        m_default = get_option<std::string>("default_value");
        m_fileTypes = *get_option<Strings>("file_types");
        m_displayText = get_option<std::string>("display_text");
        m_enumValues = *get_option<Strings>("enum_values");
        m_noRegister = get_option<bool>("no_register");
        const int status = doit();
        return status == TCL_OK ? set_result(interp, m_name) : status;
    }

    using HTCITaskHelper::redo;
    using HTCITaskHelper::undo;
    int undo() override {
        const auto info = getObjectInfo(m_class);
        const auto spec = info && m_created ? info->getSpec(m_name, false) : nullptr;
        const auto byDefault = info ? info->getSpec(defaultSpecName, false) : nullptr;
        if (spec && byDefault) {
            byDefault->unregisterUserSpec(spec);
            info->deleteSpec(m_name);
        }
        return 0;
    }
    int redo() override { return doit(); }

private:
    int doit() {
        m_created = false;
        const auto info = getObjectInfoOrError(m_class);
        const HATAttrTypes::AttrType type = GetAttrType(m_type);
        if (!m_noRegister && m_name != defaultSpecName) {
            const auto known = info->getSpec(m_name);
            if (known && known->getAttrSpec()->getAttrType() == type && known->getName() == m_name) {
                return TCL_OK;
            }
        }
        const auto byDefault = info->getSpec(defaultSpecName, false);
        const auto spec = m_noRegister ? info->createSpecNoRegister(m_name) : info->createSpecOrError(m_name);
        try {
            describe(*spec->getAttrSpec(), type);
            spec->setOwner("user");
            if (!byDefault || !byDefault->registerUserSpec(spec)) {
                throw HEXError(
                    ComMsgMgrInstance("common", ComMsgMgr::MSGTYPE_ERROR, "@17-118@%s\n", m_class));
            }
        } catch (...) {
            if (!m_noRegister) {
                info->deleteSpec(m_name);
            }
            throw;
        }
        m_created = !m_noRegister;
        return TCL_OK;
    }

    void describe(HATAttrSpec& spec, HATAttrTypes::AttrType type) const {
        spec.setAttrType(type);
        spec.setDescription(m_description);
        spec.setReadOnly(false);
        spec.setVisible(true);
        spec.setUserDefined(true);
        spec.setName(m_name);
        switch (type) {
        case HATAttrTypes::type_bool:
            spec.setBoolDefault(std::get<bool>(value_for(spec, m_default.empty() ? "1" : m_default)));
            break;
        case HATAttrTypes::type_int:
            if (!m_default.empty()) {
                spec.setIntDefault(std::get<int>(value_for(spec, m_default)));
            }
            break;
        case HATAttrTypes::type_string:
            spec.setStringDefault(m_default);
            break;
        case HATAttrTypes::type_enum:
            spec.addEnumRange(m_enumValues);
            if (!m_default.empty()) {
                spec.setEnumDefault(std::get<std::string>(value_for(spec, m_default)));
            }
            break;
        case HATAttrTypes::type_file:
            for (const std::string& extension : m_fileTypes) {
                spec.addFileExtRange(extension);
            }
            spec.setFileExtRangeDescription(m_displayText);
            spec.setFileDefault(std::get<std::string>(value_for(spec, m_default)));
            break;
        default:
            break;
        }
    }

    static HATAttrAny value_for(const HATAttrSpec& spec, const std::string& text) {
        return HATAttrUtils::convert(spec, text);
    }

    std::string m_name;
    std::string m_description;
    std::string m_class;
    std::string m_type;
    std::string m_default;
    HSTVector<std::string> m_fileTypes;
    std::string m_displayText;
    HSTVector<std::string> m_enumValues;
    bool m_noRegister = false;
    bool m_created = false; // undo takes away only what this command made
};

extern const task_entry entry = entry_of<task>;

} // namespace create_property
