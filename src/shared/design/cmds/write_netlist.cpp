// write_netlist ?-force? file
// Writes the current design in the JSON form of Yosys, compressed if the name ends in ".gz". A file that is
// there is kept unless -force is given; a failure leaves it as it was.
#include "design/NetlistWriter.h"
#include "design/cmds/objects.h"

using namespace vek::tcltasks;

namespace design::cmds::write_netlist {

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "write_netlist";

    static void load_description() {
        in_categories("FileIO");
        description_instance("Write the current design as a netlist", "")
            .add_options()
            .add_option("force", options::flag(), "Replace a file that exists.")
            .add_option("file", options::text(), "The file to write.")
            .hint("file")
            .required();
        positional_instance().add("file", 1);
    }
    std::string owner() const override { return "design"; }

    int execute() override {
        design::write_netlist(design::Database::instance().require_current(), get_option<std::string>("file"),
                              get_option<bool>("force"));
        return TCL_OK;
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace design::cmds::write_netlist
