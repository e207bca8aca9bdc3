// The program's version, as the shell and the log tell it.
#define TOLVENAR_VERSION "1.0"
