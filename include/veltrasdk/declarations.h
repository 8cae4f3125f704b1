/* SPDX-FileCopyrightText: 2026 The libveltrasdk authors */
/* SPDX-License-Identifier: MIT */

/**
 * @file
 * @brief The declarations that the other public headers are written with.
 */
#ifndef VELTRASDK_DECLARATIONS_H
#define VELTRASDK_DECLARATIONS_H

#include <stdint.h>

/** Marks what the shared library exports; everything else in it is hidden. */
#define VELTRASDK_API __attribute__((visibility("default")))

/**
 * Opens an enumeration that has the same name, width and enumerators in C and in C++: in C++ an
 * enumeration over @p Type, in C the integer type @p Type itself beside a list of constants, so
 * that a pointer to it is a pointer to exactly sizeof(@p Type) bytes in both.
 */
#ifdef __cplusplus
#define VELTRASDK_ENUM(Name, Type) enum Name : Type
#else
#define VELTRASDK_ENUM(Name, Type)                                                                 \
    typedef Type Name;                                                                             \
    enum
#endif

/** An adapter's link; opaque. Made by VeltraSDK_Create(), released by VeltraSDK_Destroy(). */
typedef struct VeltraSDK_Handle VeltraSDK_Handle;

#endif
