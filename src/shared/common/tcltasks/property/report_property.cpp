// report_property ?-all? ?-detail? ?-class NAME? ?-regexp? ?-return_string | -file NAME ?-append?? ?OBJECT?
// ?PATTERN? Reports properties with their values as a table, on the console, as the result or in a file.
#include "platform/env/HUTEnv.h"
#include "platform/env/HUTFileWriteStream.h"
#include "platform/gui/HDGUIStatus.h"
#include "platform/msg/ComMsgMgrOstream.h"
#include "tcltasks/property/detail/arghelper.h"
#include "tcltasks/property/detail/listing.h"
#include "tcltasks/property/detail/options.h"

using namespace vek::tcltasks;
using namespace HCPProperty;
using namespace HTCProperty::detail;

namespace report_property {

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "common::report_property";

    static void load_description() {
        in_categories("Object", "PropertyAndParameter", "Report");
        description_instance("Report properties of object", "property report")
            .add_options()
            .add_option("all", options::flag(), "Report all properties of object even if not set")
            .add_option("pattern", options::text("*"), "Pattern to match properties against")
            .add_option("detail", options::flag(), "Report detailed help on properties")
            .add_option("class", options::text(),
                        "Object type to query for properties. Not valid with <object>")
            .hint("class")
            .add_option("list_owners", options::flag(), "Report the owner of each property")
            .add_option("return_string", options::flag(),
                        "Set the result of running report_property in the Tcl interpreter's result variable")
            .add_option("object", optional_objects_option(), "Object to query for properties")
            .add_option("file", options::text(),
                        "Filename to output result to.  Send output to console if -file is not used")
            .hint("file")
            .add_option("append", options::flag(),
                        "Append the results to file, don't overwrite the results file")
            .add_option("regexp", options::flag(), "Pattern is treated as a regular expression");
        positional_instance().add("object", 1).add("pattern", 1);
    }
    std::string owner() const override { return "common"; }

    int execute(Tcl_Interp* interp) override {
        check_output_options();
        Utils::getGuiStatus(HTCGuiStatusAccess::getGuiStatus());
        auto objects = get_option<Objects>("object");
        auto pattern = get_option<std::string>("pattern");
        const auto cls = get_option<std::string>("class");
        arghelper::adjustObjectAndPatternOrError(objects, pattern, cls);
        const tclany object = cls.empty() ? one_object(objects) : tclany();
        listing::Entries entries = cls.empty() ? entries_of(object) : entries_of(cls);
        listing::keepMatching(entries, pattern, get_option<bool>("regexp"));
        if (entries.empty()) {
            throw HEXAll(ComMsgMgrInstance("common", ComMsgMgr::MSGTYPE_ERROR, "@17-380@%s", pattern));
        }
        const listing::ReportOptions how{get_option<bool>("all"), get_option<bool>("list_owners"),
                                         HUTEnv::isTclDebug()};
        return put_out(interp, get_option<bool>("detail") || !cls.empty()
                                   ? listing::detailedReport(object, entries, how)
                                   : listing::normalReport(object, entries, how));
    }

private:
    void check_output_options() const {
        if (specified_option("file") && get_option<std::string>("file").empty()) {
            throw HTCErrors::invalid_option_value("file", "");
        }
        if (specified_option("return_string") && specified_option("file")) {
            throw HTCErrors::command_failed("'-return_string' and '-file' cannot be used together");
        }
        if (specified_option("append") && !specified_option("file")) {
            throw HTCErrors::command_failed("'-append' requires '-file' option");
        }
    }

    static const tclany& one_object(const Objects& objects) {
        Utils::oneObjectOrError(objects, "report_property");
        return (*objects)[0];
    }

    static listing::Entries entries_of(const tclany& object) {
        listing::Entries entries;
        Utils::getPropertyNames(object, entries);
        for (auto& entry : entries) {
            HATAttrAny value;
            if (Get::report(object, entry, value)) {
                entry.value = std::move(value);
                entry.hasValue = true;
            }
        }
        return entries;
    }

    static listing::Entries entries_of(const std::string& cls) {
        listing::Entries entries;
        Utils::getPropertyNames(cls, entries);
        return entries;
    }

    int put_out(Tcl_Interp* interp, const std::string& text) {
        if (get_option<bool>("return_string")) {
            return set_result(interp, text);
        }
        if (!specified_option("file")) {
            ComMsgMgrOstream() << text << "\n";
            return TCL_OK;
        }
        HUTFileWriteStream stream;
        stream.open(get_option<std::string>("file"), "",
                    get_option<bool>("append") ? HUTFileWriteStream::append : HUTFileWriteStream::overwrite);
        stream.write(text + "\n");
        stream.close();
        return set_result(interp, stream.getCanonicalFilePath());
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace report_property
