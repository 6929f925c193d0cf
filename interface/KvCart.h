#ifndef KVCART_INTERFACE_KVCART_H
#define KVCART_INTERFACE_KVCART_H

// The flat C interface of the library.

#ifdef __cplusplus
extern "C" {
#endif

// Reads the catalogues once per call: ellipsoid.gxr, map_projection.gxr and the
// state plane files from systemDirectory, custom_ellipsoid.gxr and
// custom_projection.gxr from userDirectory. Both are prefixes to which the file
// names are appended, so they end with "/". Changed custom catalogues are
// written back to userDirectory at process exit.
void CARTSETUPLINUX(const char* systemDirectory, const char* userDirectory);

#ifdef __cplusplus
}
#endif

#endif
