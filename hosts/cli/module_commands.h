// The commands that work on the control module rather than run a script: register and
// unregister it in the per-user registry, and show what is registered.
#pragma once

#include <iostream>

namespace script {

// Loads the module that lies beside this program (libOstrelImageEditCtrl.so in the
// same folder) with dlopen and calls its DllRegisterServer, or DllUnregisterServer.
// Prints what was done; an exit status.
int RegisterModule(bool unregister, std::ostream& out, std::ostream& errors);
// Prints the module's registered classes, from the registry file, and its type
// library's interfaces with their DISPIDs, from the type library file that
// registration wrote. An exit status.
int PrintRegistration(std::ostream& out, std::ostream& errors);

}  // namespace script
