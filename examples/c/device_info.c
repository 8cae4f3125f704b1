/* Prints the library's version and the adapter's five identity strings. */
#include "example.h"

/* The strings come from new char[]: this is the name of `operator delete[](void*)`. */
extern void _ZdaPv(void* memory);

static void printAndRelease(int index, char* text) {
    printf("  string %d: %s\n", index, text);
    _ZdaPv(text);
}

int main(void) {
    printf("libveltrasdk %s\n", VeltraSDK_GetVersion());

    VeltraSDK_Handle* handle = VeltraSDK_Create(1000);
    VeltraSDK_DeviceInfo info;
    const bool read = connectOrExplain(handle) &&
                      succeeded("Reading the strings", VeltraSDK_GetDeviceInfo(handle, &info));
    if (read) {
        puts("Adapter:");
        printAndRelease(1, info.usbString1);
        printAndRelease(2, info.usbString2);
        printAndRelease(3, info.usbString3);
        printAndRelease(4, info.usbString4);
        printAndRelease(5, info.usbString5);
    }
    VeltraSDK_Destroy(handle);
    return read ? 0 : 1;
}
