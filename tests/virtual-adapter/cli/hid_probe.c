/* SPDX-FileCopyrightText: 2026 The libveltrasdk authors */
/* SPDX-License-Identifier: MIT */

/* Plays hidapi calls, one per argument, and prints what each returned. */

#include <hidapi.h>

#include <fcntl.h>
#include <locale.h>
#include <pthread.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

static hid_device* device;

static const wchar_t* shown(const wchar_t* text) {
    return text == NULL ? L"(null)" : text;
}

static void list(void) {
    struct hid_device_info* const first = hid_enumerate(0, 0);
    if (first == NULL) {
        printf("list: nothing\n");
    }
    for (const struct hid_device_info* info = first; info != NULL; info = info->next) {
        printf("list: %s %04x:%04x %x %ls | %ls | %ls interface %d bus %d\n", info->path,
               info->vendor_id, info->product_id, info->release_number,
               shown(info->manufacturer_string), shown(info->product_string),
               shown(info->serial_number), info->interface_number, (int)info->bus_type);
    }
    hid_free_enumeration(first);
}

static void openPath(const char* path) {
    hid_device* const opened = hid_open_path(path);
    printf("open: %s\n", opened == NULL ? "null" : "ok");
    if (opened != NULL) {
        device = opened;
    }
}

static void writeBytes(const char* text) {
    unsigned char bytes[2048];
    size_t size = 0;
    char* end = NULL;
    for (unsigned long byte = strtoul(text, &end, 16); end != text && size < sizeof bytes;
         byte = strtoul(text, &end, 16)) {
        bytes[size++] = (unsigned char)byte;
        text = end;
    }
    printf("write: %d\n", hid_write(device, bytes, size));
}

/* Trailing zeros are padding: they are not printed. */
static void readReport(const char* milliseconds) {
    unsigned char report[2048];
    const int count = hid_read_timeout(device, report, sizeof report, atoi(milliseconds));
    int shownCount = count;
    while (shownCount > 0 && report[shownCount - 1] == 0) {
        --shownCount;
    }
    printf("read: %d", count);
    for (int i = 0; i < shownCount; ++i) {
        printf(" %02x", report[i]);
    }
    printf("\n");
}

/* Reads until the process ends. */
static void* hammer(void* handle) {
    unsigned char report[64];
    for (;;) {
        hid_read_timeout(handle, report, sizeof report, 0);
    }
    return NULL;
}

static void startHammering(void) {
    pthread_t thread;
    printf("hammer: %d\n", pthread_create(&thread, NULL, hammer, device));
    pthread_detach(thread);
}

/* Children play what is left of the calls, one child after the other; then the parent goes on. */
static void forkChildren(int count) {
    const unsigned generousSeconds = 30;
    for (int i = 0; i < count; ++i) {
        const pid_t child = fork();
        if (child == 0) {
            alarm(generousSeconds);
            return;
        }
        int status = -1;
        waitpid(child, &status, 0);
        if (status != 0) {
            printf("child: status %d\n", status);
            return;
        }
    }
}

/* Waits until somebody opens the pipe of that name for writing. */
static void waitForFile(const char* fifo) {
    close(open(fifo, O_RDONLY));
}

/* Becomes a daemon that holds none of its starter's descriptors and prints into the file. */
static void becomeDaemon(const char* file) {
    for (int i = 0; i < 2; ++i) {
        if (fork() != 0) {
            _exit(0);
        }
        setsid();
    }
    for (int descriptor = (int)sysconf(_SC_OPEN_MAX) - 1; descriptor >= 0; --descriptor) {
        close(descriptor);
    }
    open("/dev/null", O_RDONLY);
    open(file, O_WRONLY);
    dup2(STDOUT_FILENO, STDERR_FILENO);
}

static int play(const char* call) {
    if (strcmp(call, "init") == 0) {
        printf("init: %d\n", hid_init());
    } else if (strcmp(call, "exit") == 0) {
        printf("exit: %d\n", hid_exit());
    } else if (strcmp(call, "list") == 0) {
        list();
    } else if (strncmp(call, "open ", 5) == 0) {
        openPath(call + 5);
    } else if (strncmp(call, "write ", 6) == 0) {
        writeBytes(call + 6);
    } else if (strncmp(call, "read ", 5) == 0) {
        readReport(call + 5);
    } else if (strcmp(call, "close") == 0) {
        hid_close(device);
    } else if (strcmp(call, "hammer") == 0) {
        startHammering();
    } else if (strncmp(call, "fork ", 5) == 0) {
        forkChildren(atoi(call + 5));
    } else if (strncmp(call, "daemon ", 7) == 0) {
        becomeDaemon(call + 7);
    } else if (strncmp(call, "raise ", 6) == 0) {
        const int number = atoi(call + 6);
        signal(number, SIG_DFL); /* a sanitizer would report it instead */
        raise(number);
    } else if (strncmp(call, "wait ", 5) == 0) {
        waitForFile(call + 5);
    } else if (strcmp(call, "leave") == 0) {
        _exit(0);
    } else {
        return 0;
    }
    fflush(stdout);
    return 1;
}

int main(int argc, char** argv) {
    setlocale(LC_ALL, "C.UTF-8");
    for (int i = 1; i < argc; ++i) {
        if (strncmp(argv[i], "status ", 7) == 0) {
            return atoi(argv[i] + 7);
        }
        if (!play(argv[i])) {
            fprintf(stderr, "unknown call: %s\n", argv[i]);
            return 2;
        }
    }
    return 0;
}
