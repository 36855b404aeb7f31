/* A C caller of the command line's flat entry points: prints what they return for the options
   named on its own command line after "--ask". */
#include <stdio.h>
#include <string.h>

int utl_CommandLineStringC(const char* name, char* out, int outLength);
int utl_getArgs(const char* name, char* out);

int main(int argc, char** argv)
{
    int i = 1;
    while (i < argc && strcmp(argv[i], "--ask") != 0)
        ++i;
    for (++i; i < argc; ++i) {
        char padded[9];
        char whole[256];
        int n;
        memset(padded, '#', sizeof padded);
        n = utl_CommandLineStringC(argv[i], padded, 8);
        padded[8] = '\0';
        printf("%s c=%d [%s]", argv[i], n, padded);
        n = utl_getArgs(argv[i], whole);
        printf(" args=%d [%s]\n", n, n > 0 ? whole : "");
    }
    return 0;
}
