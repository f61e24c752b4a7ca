/* Prints what a Windows program sees of a translated file through the Win32
 * resource calls: the language of every string block, menu and dialog, each
 * string by LoadStringW, each menu item by LoadMenuW and GetMenuStringW, and
 * each dialog's caption and control titles from its template, and, where a
 * window can be made, by GetDlgItemTextW. One UTF-8 line per text.
 *
 * usage: texts_probe.exe FILE
 */
#include <stdio.h>
#include <string.h>
#include <windows.h>

static HANDLE out;

static void Put(const char *prefix, const WCHAR *text, int length) {
    char line[4096];
    int used = snprintf(line, sizeof line, "%s", prefix);
    used += WideCharToMultiByte(CP_UTF8, 0, text, length, line + used, sizeof line - used - 2,
                                NULL, NULL);
    line[used++] = '\n';
    DWORD written;
    WriteFile(out, line, (DWORD)used, &written, NULL);
}

static void PutText(const char *prefix) {
    DWORD written;
    WriteFile(out, prefix, (DWORD)strlen(prefix), &written, NULL);
}

static const char *TypeWord(LPCWSTR type) {
    if (type == RT_STRING)
        return "string";
    if (type == RT_MENU)
        return "menu";
    return "dialog";
}

static BOOL CALLBACK PrintLanguage(HMODULE module, LPCWSTR type, LPCWSTR name, WORD language,
                                   LONG_PTR unused) {
    char line[128];
    (void)module;
    (void)unused;
    snprintf(line, sizeof line, "language %s %u: %04X\n", TypeWord(type),
             (unsigned)(ULONG_PTR)name, language);
    PutText(line);
    return TRUE;
}

static void Strings(HMODULE module, WORD block) {
    for (UINT id = (block - 1u) * 16u; id < block * 16u; ++id) {
        const WCHAR *text = NULL;
        int length = LoadStringW(module, id, (LPWSTR)&text, 0);
        if (length > 0) {
            char prefix[64];
            snprintf(prefix, sizeof prefix, "string %u: ", id);
            Put(prefix, text, length);
        }
    }
}

static void MenuItems(HMENU menu, const char *path) {
    int count = GetMenuItemCount(menu);
    for (int i = 0; i < count; ++i) {
        WCHAR text[512];
        char prefix[128];
        int length = GetMenuStringW(menu, (UINT)i, text, 512, MF_BYPOSITION);
        snprintf(prefix, sizeof prefix, "%s.%d: ", path, i);
        if (length > 0)
            Put(prefix, text, length);
        HMENU sub = GetSubMenu(menu, i);
        if (sub) {
            snprintf(prefix, sizeof prefix, "%s.%d", path, i);
            MenuItems(sub, prefix);
        }
    }
}

/* A name or ordinal field of a template: skips it, returns the text if any. */
static const WORD *Field(const WORD *at, const WCHAR **text) {
    *text = NULL;
    if (*at == 0xFFFF)
        return at + 2;
    if (*at != 0)
        *text = (const WCHAR *)at;
    return at + wcslen((const WCHAR *)at) + 1;
}

static INT_PTR CALLBACK Quiet(HWND dialog, UINT message, WPARAM w, LPARAM l) {
    (void)dialog;
    (void)message;
    (void)w;
    (void)l;
    return FALSE;
}

/* The extended template, as the loader hands it out. */
static void Dialog(HMODULE module, WORD id) {
    HRSRC found = FindResourceW(module, MAKEINTRESOURCEW(id), RT_DIALOG);
    const WORD *at = found ? LockResource(LoadResource(module, found)) : NULL;
    char prefix[128];
    if (!at || at[0] != 1 || at[1] != 0xFFFF) {
        snprintf(prefix, sizeof prefix, "dialog %u: not an extended template\n", id);
        PutText(prefix);
        return;
    }
    DWORD style = *(const DWORD *)(at + 6);
    WORD count = at[8];
    const WCHAR *text;
    at = Field(at + 13, &text); /* menu */
    at = Field(at, &text);      /* class */
    at = Field(at, &text);      /* caption */
    snprintf(prefix, sizeof prefix, "dialog %u caption: ", id);
    if (text)
        Put(prefix, text, (int)wcslen(text));
    if (style & DS_SETFONT)
        at += 3 + wcslen((const WCHAR *)(at + 3)) + 1;
    DWORD ids[256];
    WORD controls = 0;
    for (WORD i = 0; i < count; ++i) {
        at = (const WORD *)(((ULONG_PTR)at + 3) & ~(ULONG_PTR)3);
        DWORD control = *(const DWORD *)(at + 10);
        at = Field(at + 12, &text); /* class */
        at = Field(at, &text);      /* title */
        if (text) {
            snprintf(prefix, sizeof prefix, "dialog %u control %lu: ", id, (unsigned long)control);
            Put(prefix, text, (int)wcslen(text));
            if (controls < 256)
                ids[controls++] = control;
        }
        at += 1 + *at / 2 + (*at % 2); /* creation data */
    }
    /* A window, where the system can make one: the texts as the controls hold them. */
    HWND window = CreateDialogParamW(module, MAKEINTRESOURCEW(id), NULL, Quiet, 0);
    if (!window)
        return;
    WCHAR title[512];
    for (WORD i = 0; i < controls; ++i) {
        int length = (int)GetDlgItemTextW(window, (int)ids[i], title, 512);
        snprintf(prefix, sizeof prefix, "window %u control %lu: ", id, (unsigned long)ids[i]);
        Put(prefix, title, length);
    }
    DestroyWindow(window);
}

static BOOL CALLBACK Each(HMODULE module, LPCWSTR type, LPWSTR name, LONG_PTR unused) {
    (void)unused;
    if (!IS_INTRESOURCE(name))
        return TRUE;
    WORD id = (WORD)(ULONG_PTR)name;
    EnumResourceLanguagesW(module, type, name, PrintLanguage, 0);
    if (type == RT_STRING) {
        Strings(module, id);
    } else if (type == RT_MENU) {
        HMENU menu = LoadMenuW(module, name);
        char path[32];
        snprintf(path, sizeof path, "menu %u", id);
        if (menu) {
            MenuItems(menu, path);
            DestroyMenu(menu);
        }
    } else {
        Dialog(module, id);
    }
    return TRUE;
}

int wmain(int argc, WCHAR **argv) {
    out = GetStdHandle(STD_OUTPUT_HANDLE);
    if (argc != 2) {
        PutText("usage: texts_probe.exe FILE\n");
        return 2;
    }
    HMODULE module = LoadLibraryExW(argv[1], NULL, LOAD_LIBRARY_AS_DATAFILE);
    if (!module) {
        char line[64];
        snprintf(line, sizeof line, "cannot load: error %lu\n", GetLastError());
        PutText(line);
        return 1;
    }
    EnumResourceNamesW(module, RT_STRING, Each, 0);
    EnumResourceNamesW(module, RT_MENU, Each, 0);
    EnumResourceNamesW(module, RT_DIALOG, Each, 0);
    FreeLibrary(module);
    return 0;
}
