// read_netlist ?-top name? file
// Reads a netlist in the JSON form of Yosys, plain or compressed; its design becomes current and is the
// result. If the file is refused, all designs stay as they were.
#include "design/cmds/objects.h"
#include "platform/msg/ComMsgMgr.h"

using namespace vek::tcltasks;

namespace design::cmds::read_netlist {

class task : public HTCITaskHelper<task, breaks_undo> {
public:
    static constexpr const char* command = "read_netlist";

    static void load_description() {
        in_categories("FileIO");
        description_instance("Read a netlist and make it the current design", "design")
            .add_options()
            .add_option("top", options::text(""), "Name of the top module.",
                        HTCTclTaskOptions::DefaultValueDescription(
                            "the module marked as top, or the only one not used"))
            .add_option("file", options::text(),
                        "The file, in the JSON form of Yosys; may be compressed by gzip.")
            .hint("file")
            .required();
        positional_instance().add("file", 1);
    }
    std::string owner() const override { return "design"; }

    int execute(Tcl_Interp* interp) override {
        design::Design& d = design::Database::instance().read(
            get_option<std::string>("file"), get_option<std::string>("top"), task_manager::isTaskCanceled);
        ComMsgMgr::sendMsg("design", ComMsgMgr::MSGTYPE_INFO, "@40-20@%s%s%u%u\n", d.name(), d.file(),
                           d.count<design::Cell>(), d.count<design::Net>());
        return set_result(interp, &d);
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace design::cmds::read_netlist
