# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
# The identifiers of the two adapter models. The defaults lie in the open test range; a product
# build sets its own.
set(VELTRASDK_USB_VENDOR_ID 0x1209 CACHE STRING "USB vendor identifier of both adapter models")
set(VELTRASDK_USB_PRODUCT_ID_FULL_SPEED 0x0001 CACHE STRING
    "USB product identifier of the full-speed model (64-byte reports)")
set(VELTRASDK_USB_PRODUCT_ID_HIGH_SPEED 0x0002 CACHE STRING
    "USB product identifier of the high-speed model (1024-byte reports)")

foreach(identifier VENDOR_ID PRODUCT_ID_FULL_SPEED PRODUCT_ID_HIGH_SPEED)
    set(value "${VELTRASDK_USB_${identifier}}")
    if(NOT value MATCHES "^0[xX][0-9a-fA-F]+$")
        message(FATAL_ERROR "VELTRASDK_USB_${identifier} must be hexadecimal, such as 0x1209; "
                            "it is '${value}'")
    endif()
    if(NOT value MATCHES "^0[xX]0*[1-9a-fA-F][0-9a-fA-F]?[0-9a-fA-F]?[0-9a-fA-F]?$")
        message(FATAL_ERROR "VELTRASDK_USB_${identifier} must fit 16 bits and not be 0; "
                            "it is ${value}")
    endif()
    # As the kernel writes them, for udev: four lower-case hexadecimal digits.
    math(EXPR digits "${value} + 0x10000" OUTPUT_FORMAT HEXADECIMAL)
    string(SUBSTRING ${digits} 3 4 udev_${identifier})
endforeach()

math(EXPR usb_product_step
     "${VELTRASDK_USB_PRODUCT_ID_HIGH_SPEED} - ${VELTRASDK_USB_PRODUCT_ID_FULL_SPEED}")
if(NOT usb_product_step EQUAL 1)
    message(FATAL_ERROR "VELTRASDK_USB_PRODUCT_ID_HIGH_SPEED must be "
                        "VELTRASDK_USB_PRODUCT_ID_FULL_SPEED + 1")
endif()

if(VELTRASDK_BUILD_TESTS AND NOT "${udev_VENDOR_ID}:${udev_PRODUCT_ID_FULL_SPEED}" STREQUAL "1209:0001")
    message(FATAL_ERROR "The tests expect the default USB identifiers: add -D BUILD_TESTING=OFF")
endif()

add_library(veltrasdk_usb_identifiers INTERFACE)
target_compile_definitions(veltrasdk_usb_identifiers INTERFACE
    VELTRASDK_USB_VENDOR_ID=${VELTRASDK_USB_VENDOR_ID}
    VELTRASDK_USB_PRODUCT_ID_FULL_SPEED=${VELTRASDK_USB_PRODUCT_ID_FULL_SPEED}
    VELTRASDK_USB_PRODUCT_ID_HIGH_SPEED=${VELTRASDK_USB_PRODUCT_ID_HIGH_SPEED})
