// The version of the program and of libraries that are bound while it runs.
#ifndef APP_VERSION_H
#define APP_VERSION_H

// Fills VR_szVersion; "" when the version block cannot be read. The path is not used.
void GetVRVersion(const char *programPath);
const char *VR_GetBuildVersion(); // of this program: "1.2.3"

struct VR_DllFn {
    const char *name;
    void *address;
};
// 0 all resolved; -1 no such library; -2 no entry, or not every entry resolved.
int VR_LoadDllFnTable(const char *dllName, int count, VR_DllFn *table);
void *VR_GetDllFn(const char *name, int count, const VR_DllFn *table); // null when absent

#endif
