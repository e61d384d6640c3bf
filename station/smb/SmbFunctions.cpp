#include "SmbFunctions.h"

#include "StationLog.h"

#include <stdexcept>
#include <string>

#include <dlfcn.h>

namespace {
constexpr auto libraryName = "libsmbclient.so.0";

[[noreturn]] void fail(const std::string &reason)
{
    qCCritical(stationLog, "NAS servers cannot be used, libsmbclient cannot be loaded: %s", reason.c_str());
    throw std::runtime_error(reason);
}

template<typename Function>
void take(void *library, const char *name, Function &function)
{
    function = reinterpret_cast<Function>(dlsym(library, name));
    if (!function)
        fail(std::string("it has no function ") + name);
}

SmbFunctions load()
{
    SmbFunctions smb;
    smb.library = dlopen(libraryName, RTLD_NOW | RTLD_LOCAL);
    if (!smb.library)
        fail(dlerror());
    take(smb.library, "smbc_new_context", smb.newContext);
    take(smb.library, "smbc_init_context", smb.initContext);
    take(smb.library, "smbc_free_context", smb.freeContext);
    take(smb.library, "smbc_setConfiguration", smb.setConfiguration);
    take(smb.library, "smbc_setLogCallback", smb.setLogCallback);
    take(smb.library, "smbc_setTimeout", smb.setTimeout);
    take(smb.library, "smbc_getOptionUserData", smb.getOptionUserData);
    take(smb.library, "smbc_setOptionUserData", smb.setOptionUserData);
    take(smb.library, "smbc_setFunctionAuthDataWithContext", smb.setFunctionAuthDataWithContext);
    take(smb.library, "smbc_setOptionUseKerberos", smb.setOptionUseKerberos);
    take(smb.library, "smbc_setOptionUseCCache", smb.setOptionUseCCache);
    take(smb.library, "smbc_setOptionNoAutoAnonymousLogin", smb.setOptionNoAutoAnonymousLogin);
    take(smb.library, "smbc_getFunctionOpen", smb.getFunctionOpen);
    take(smb.library, "smbc_getFunctionWrite", smb.getFunctionWrite);
    take(smb.library, "smbc_getFunctionClose", smb.getFunctionClose);
    take(smb.library, "smbc_getFunctionUnlink", smb.getFunctionUnlink);
    take(smb.library, "smbc_getFunctionStat", smb.getFunctionStat);
    take(smb.library, "smbc_getFunctionStatVFS", smb.getFunctionStatVFS);
    take(smb.library, "smbc_getFunctionOpendir", smb.getFunctionOpendir);
    take(smb.library, "smbc_getFunctionReaddir", smb.getFunctionReaddir);
    take(smb.library, "smbc_getFunctionReaddirPlus", smb.getFunctionReaddirPlus);
    take(smb.library, "smbc_getFunctionClosedir", smb.getFunctionClosedir);
    return smb;
}
} // namespace

void *SmbFunctions::find(const char *name) const
{
    return dlsym(library, name);
}

const SmbFunctions &smbFunctions()
{
    static const SmbFunctions functions = load();
    return functions;
}
