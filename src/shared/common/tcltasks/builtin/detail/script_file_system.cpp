#include "tcltasks/builtin/detail/script_file_system.h"

#include <cerrno>
#include <fcntl.h>
#include <memory>
#include <new>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "platform/env/HUTPathUtils.h"
#include "platform/msg/ComMsgMgr.h"
#include "platform/msg/HEX.h"
#include "platform/tcl/HTCTclEncoding.h"
#include "platform/tcl/tcl_guard.h"
#include "platform/tcl/tclobj_ref.h"
#include "platform/xp/xp.h"

// Tcl's own, exported for extensions: true while the thread gives up its channels.
extern "C" int TclInThreadExit();

namespace HTCBuiltin::detail {

using isl::iostreams::filtering_stream;
using vek::tcltasks::tcl_guard;
using vek::tcltasks::tclobj_ref;

namespace {

// Tcl asks the file systems on every thread; each keeps its own.
thread_local std::string openFailure;

const Tcl_Filesystem& s_tcl_fs();

// The path claimed last, which is only compared. What is asked about it in turn is for Tcl's own file system.
Tcl_Obj*& last_path() {
    static thread_local Tcl_Obj* lastPathPtr = nullptr;
    return lastPathPtr;
}

// In the system encoding, with a leading ~ resolved; empty for a path that cannot be.
std::string native_path(Tcl_Obj* path) {
    const tclobj_ref translated(Tcl_FSGetTranslatedPath(nullptr, path));
    if (!translated) {
        return {};
    }
    std::string native = HTCTclEncoding::tclGetString(translated.get());
    Tcl_DecrRefCount(translated.get()); // Tcl's count of it is ours
    return native;
}

Tcl_Obj* private_path(Tcl_Obj* path) {
    return static_cast<Tcl_Obj*>(Tcl_FSGetInternalRep(path, &s_tcl_fs()));
}

int tcl_path_in_fs(Tcl_Obj* path, ClientData* clientData) {
    return tcl_guard(nullptr,
                     [&] {
                         Tcl_Obj*& lastPathPtr = last_path();
                         const std::string native = native_path(path);
                         if (native.empty() || !HUTPathUtils::exists(native)) {
                             return -1;
                         }
                         if (path != lastPathPtr && isl::iostreams::xp::is_encrypted(native.c_str())) {
                             lastPathPtr = Tcl_DuplicateObj(path);
                             Tcl_IncrRefCount(lastPathPtr);
                             *clientData = lastPathPtr;
                             return TCL_OK;
                         }
                         lastPathPtr = nullptr;
                         return -1;
                     }) == TCL_OK
               ? TCL_OK
               : -1;
}

ClientData tcl_fs_dup_intnlrep(ClientData path) {
    Tcl_IncrRefCount(static_cast<Tcl_Obj*>(path));
    return path;
}

void tcl_fs_free_intnlrep(ClientData data) {
    Tcl_Obj* const path = static_cast<Tcl_Obj*>(data);
    if (last_path() == path && path->refCount <= 1) {
        last_path() = nullptr; // another value may get its address
    }
    Tcl_DecrRefCount(path);
}

int tcl_fs_stat(Tcl_Obj* path, Tcl_StatBuf* status) {
    return Tcl_FSStat(private_path(path), status);
}

int tcl_fs_access(Tcl_Obj* path, int mode) {
    return Tcl_FSAccess(private_path(path), mode);
}

// Tcl would otherwise load a copy in plain text from a temporary file.
int tcl_fs_load(Tcl_Interp* interp, Tcl_Obj* path, Tcl_LoadHandle*, Tcl_FSUnloadFileProc**) {
    Tcl_SetErrno(ENOEXEC);
    if (interp) {
        Tcl_SetObjResult(interp, Tcl_ObjPrintf("couldn't load file \"%s\": %s", Tcl_GetString(path),
                                               Tcl_PosixError(interp)));
    }
    return TCL_ERROR;
}

// Allocated by Tcl_Alloc.
struct channel_state {
    Tcl_Channel channel;
    int fd;
    filtering_stream* stream;
    std::shared_ptr<filtering_stream> count;
};

channel_state& state_of(ClientData data) {
    return *static_cast<channel_state*>(data);
}

int file_input_proc(ClientData data, char* buffer, int size, int* errorCode) {
    *errorCode = 0;
    int count = -1;
    const int code = tcl_guard(nullptr, [&] {
        const std::shared_ptr<filtering_stream> stream = state_of(data).count;
        count = static_cast<int>(stream->read(buffer, static_cast<size_t>(size)));
        return TCL_OK;
    });
    if (code != TCL_OK) {
        *errorCode = EIO;
    }
    return count;
}

int file_close_proc(ClientData data, Tcl_Interp*) {
    channel_state& state = state_of(data);
    int code = 0;
    Tcl_DeleteFileHandler(state.fd);
    state.stream = nullptr;
    state.count.reset();
    if (!TclInThreadExit() || state.fd > STDERR_FILENO) {
        code = ::close(state.fd) != 0 ? errno : 0;
    }
    state.~channel_state();
    Tcl_Free(static_cast<char*>(data));
    return code;
}

void file_watch_proc(ClientData data, int mask) {
    const channel_state& state = state_of(data);
    if (mask) {
        Tcl_CreateFileHandler(state.fd, mask, reinterpret_cast<Tcl_FileProc*>(Tcl_NotifyChannel),
                              state.channel);
    } else {
        Tcl_DeleteFileHandler(state.fd);
    }
}

const Tcl_ChannelType* channel_type() {
    static const Tcl_ChannelType type = [] {
        Tcl_ChannelType made{};
        made.typeName = "encrypted channel";
        made.version = TCL_CHANNEL_VERSION_5;
        made.closeProc = file_close_proc;
        made.inputProc = file_input_proc;
        made.watchProc = file_watch_proc;
        return made;
    }();
    return &type;
}

// Opens the file as a stream of plain text. Null, with the reason kept, if that cannot be.
std::shared_ptr<filtering_stream> open_stream(const std::string& native) {
    openFailure.clear();
    const auto cannot_open = [&](int code, const std::string& reason) {
        const ComMsgMgrInstance message("common", ComMsgMgr::MSGTYPE_ERROR, "@17-136@%s\n", native);
        openFailure = message.line() + '\n' + reason;
        Tcl_SetErrno(code);
        return nullptr;
    };
    try {
        auto stream = std::make_shared<filtering_stream>(native);
        isl::iostreams::xp_version60(native, *stream);
        return stream;
    } catch (const HEXAll& failure) {
        return cannot_open(EBADMSG, failure.what());
    } catch (const std::system_error& failure) {
        return cannot_open(failure.code().value(), failure.what());
    }
}

Tcl_Channel tcl_fs_open_file_chan(Tcl_Interp* interp, Tcl_Obj* path, int mode, int) {
    Tcl_Channel channel = nullptr;
    tcl_guard(interp, [&] {
        std::shared_ptr<filtering_stream> stream;
        if ((mode & O_ACCMODE) != O_RDONLY) {
            openFailure = "no write access";
            Tcl_SetErrno(EACCES);
        } else {
            stream = open_stream(native_path(private_path(path)));
        }
        if (!stream) {
            if (interp) {
                Tcl_PosixError(interp);
                Tcl_SetObjResult(interp, HTCTclEncoding::tclNewStringObj(openFailure));
            }
            return TCL_ERROR;
        }
        auto* const state = new (Tcl_Alloc(sizeof(channel_state)))
            channel_state{nullptr, stream->release_file_descriptor(), stream.get(), stream};
        const std::string name = "encrypted" + std::to_string(state->fd);
        channel = state->channel = Tcl_CreateChannel(channel_type(), name.c_str(), state, TCL_READABLE);
        return TCL_OK;
    });
    return channel;
}

const Tcl_Filesystem& s_tcl_fs() {
    static const Tcl_Filesystem fileSystem = [] {
        Tcl_Filesystem made{};
        made.typeName = "Encrypted File System";
        made.structureLength = sizeof made;
        made.version = TCL_FILESYSTEM_VERSION_1;
        made.pathInFilesystemProc = tcl_path_in_fs;
        made.dupInternalRepProc = tcl_fs_dup_intnlrep;
        made.freeInternalRepProc = tcl_fs_free_intnlrep;
        made.statProc = tcl_fs_stat;
        made.accessProc = tcl_fs_access;
        made.openFileChannelProc = tcl_fs_open_file_chan;
        made.loadFileProc = tcl_fs_load;
        return made;
    }();
    return fileSystem;
}

} // namespace

int register_file_system(Tcl_Interp* interp) {
    return Tcl_FSRegister(interp, &s_tcl_fs());
}

int unregister_file_system() {
    return Tcl_FSUnregister(&s_tcl_fs());
}

std::string take_open_failure() {
    return std::exchange(openFailure, {});
}

} // namespace HTCBuiltin::detail
