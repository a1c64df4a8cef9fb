/**
 * \file
 * The mark of what a shared library exports. Compiles as C11 and as C++17.
 */
#ifndef CORE_MISC_EXPORT_H
#define CORE_MISC_EXPORT_H

/**
 * Stands before a class or a function that a shared library of this tree exports; everything
 * without it is hidden. Has no effect in a program that links the static library; a module that
 * links it exports these names as well, unless it is linked with -Wl,--exclude-libs,ALL.
 */
#define VANTRIC_EXPORT __attribute__((visibility("default")))

#endif
