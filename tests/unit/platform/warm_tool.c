/* Stands in for the media tool: "-i" first, then what to do. Built in several kinds (see
   CMakeLists.txt): EARLY chooses what happens before main. */
#define _GNU_SOURCE
#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/auxv.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#ifdef HAS_LIBRARY
void tellEndOfLibrary(void); /* of warm_tool_library.c */
#endif

static int constructed;
static int tellsItsEnd;

#define NOTHING 0
#define WRITES 1
#define BUFFERS 2
#define HAS_THREAD 3
#define OPENS 4
#define HANGS 5
#define ENDS 6
#define READS 7
#define HAS_CHILD 8
#define HAS_TIMER 9

#ifndef EARLY
#define EARLY NOTHING
#endif

#if EARLY == HAS_THREAD
static void* sleepInThread(void* nothing) {
    for (;;) pause();
    return nothing;
}
#endif

static void registeredBeforeMain(void) {
    if (tellsItsEnd) printf("registered before main, ");
}

__attribute__((destructor)) static void destructorOfTheProgram(void) {
    if (tellsItsEnd) printf("destructor of the program");
}

__attribute__((constructor)) static void beforeMain(void) {
    ++constructed;
    atexit(registeredBeforeMain);
#if EARLY == WRITES
    if (write(2, "early\n", 6) < 0) _exit(1);
#elif EARLY == BUFFERS
    printf("buffered\n");
#elif EARLY == HAS_THREAD
    pthread_t thread;
    pthread_create(&thread, NULL, sleepInThread, NULL);
#elif EARLY == OPENS
    if (open("/dev/null", O_RDONLY) < 0) _exit(1);
#elif EARLY == HANGS
    pause();
#elif EARLY == ENDS
    _exit(9);
#elif EARLY == READS
    char byte;
    if (read(0, &byte, 1) != 0) _exit(1);
    getchar();
#elif EARLY == HAS_CHILD
    if (fork() == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        pause();
    }
#elif EARLY == HAS_TIMER
    alarm(100);
#endif
}

static void printBytes(const char* label, const char* bytes, size_t size) {
    printf("%s ", label);
    for (size_t i = 0; i < size; ++i) printf("%02x", (unsigned char)bytes[i]);
    printf("\n");
}

static void printFile(const char* path) {
    char bytes[65536];
    int file = open(path, O_RDONLY);
    ssize_t size = read(file, bytes, sizeof bytes);
    close(file);
    while (size > 0 && bytes[size - 1] == '\0') --size; /* the kernel's own end */
    printBytes(path, bytes, size > 0 ? (size_t)size : 0);
}

static void printDescriptors(void) {
    for (int i = 0; i < 4096; ++i) {
        struct stat status;
        if (fcntl(i, F_GETFD) < 0) continue;
        fstat(i, &status);
        printf("descriptor %d type %o flags %o closes %d\n", i, status.st_mode & S_IFMT,
               fcntl(i, F_GETFL), fcntl(i, F_GETFD));
    }
}

static void printSignals(void) {
    sigset_t blocked;
    sigprocmask(SIG_SETMASK, NULL, &blocked);
    for (int i = 1; i < 32; ++i) {
        struct sigaction action;
        sigaction(i, NULL, &action);
        printf("signal %d blocked %d handled %d\n", i, sigismember(&blocked, i),
               action.sa_handler != SIG_DFL);
    }
    sigset_t pending;
    sigpending(&pending);
    printf("pending %d\n", sigisemptyset(&pending));
}

static void printLimits(void) {
    for (int i = 0; i < RLIMIT_NLIMITS; ++i) {
        struct rlimit limit;
        getrlimit(i, &limit);
        printf("limit %d %lu %lu\n", i, limit.rlim_cur, limit.rlim_max);
    }
    printf("nice %d\n", getpriority(PRIO_PROCESS, 0));
}

extern char** environ;

/* All that a program can see of how it was started, but for numbers of processes and addresses. */
static void world(int argc, char** argv, char** envp) {
    char text[4096];
    for (int i = 0; i < argc; ++i) printBytes("argument", argv[i], strlen(argv[i]));
    printf("ended by null %d\n", argv[argc] == NULL);
    for (char** entry = envp; *entry != NULL; ++entry) printf("variable %s\n", *entry);
    printf("same environment %d\n", envp == environ);
    printFile("/proc/self/environ");
    printFile("/proc/self/comm");
    printf("invoked as %s %s\n", program_invocation_name, program_invocation_short_name);
    printf("folder %s\n", getcwd(text, sizeof text) ? text : "none");
    mode_t mask = umask(0);
    umask(mask);
    printf("mask %o\n", mask);
    printDescriptors();
    printSignals();
    printLimits();
    ssize_t size = readlink("/proc/self/exe", text, sizeof text);
    printBytes("program", text, (size_t)size);
    printf("group %d session %d thread %d\n", getpgrp() == getpid(), getsid(0) == getsid(getppid()),
           gettid() == getpid());
    printf("ids %d %d %d %d secure %lu\n", getuid(), geteuid(), getgid(), getegid(),
           getauxval(AT_SECURE));
    printf("executed as %s\n", (const char*)getauxval(AT_EXECFN));
    printf("dumpable %d keeps %d constructed %d\n", prctl(PR_GET_DUMPABLE, 0, 0, 0, 0),
           prctl(PR_GET_KEEPCAPS, 0, 0, 0, 0), constructed++);
    printf("input ends %d\n", getchar() == EOF);
}

static void* addOne(void* number) {
    ++*(int*)number;
    return number;
}

static int caught;

static void catch (int number) {
    caught = number;
}

/* What the C library does with the thread's own number. */
static int threads(void) {
    int number = 0;
    for (int i = 0; i < 4; ++i) {
        pthread_t thread;
        if (pthread_create(&thread, NULL, addOne, &number) != 0) return 1;
        pthread_join(thread, NULL);
    }
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_setprotocol(&attributes, PTHREAD_PRIO_INHERIT);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_ERRORCHECK);
    pthread_mutexattr_setrobust(&attributes, PTHREAD_MUTEX_ROBUST);
    pthread_mutex_t mutex;
    pthread_mutex_init(&mutex, &attributes);
    int first = pthread_mutex_lock(&mutex);
    int again = pthread_mutex_lock(&mutex);
    int freed = pthread_mutex_unlock(&mutex);
    signal(SIGUSR1, catch);
    int killed = pthread_kill(pthread_self(), SIGUSR1);
    cpu_set_t processors;
    int affinity = pthread_getaffinity_np(pthread_self(), sizeof processors, &processors);
    pid_t child = fork();
    if (child == 0) _exit(raise(SIGTERM));
    int status = 0;
    pid_t waited = waitpid(child, &status, 0);
    printf("%d %d %d %d %d %d %d %d %d\n", number, first, again == EDEADLK, freed, killed,
           caught == SIGUSR1, affinity, waited == child, WTERMSIG(status));
    return 0;
}

static void sayNumberIn(const char* path, pid_t number) {
    char temporary[4096];
    snprintf(temporary, sizeof temporary, "%s.tmp", path);
    FILE* file = fopen(temporary, "w");
    fprintf(file, "%d\n", number);
    fclose(file);
    rename(temporary, path);
}

static void atTheEnd(void) {
    printf("at the end\n");
}

static void withStatus(int status, void* argument) {
    printf("%s %d, ", (const char*)argument, status);
}

/* Registered while the process ends already. */
static void registersMore(void) {
    static char late[] = "late";
    on_exit(withStatus, late);
}

static void* exitInThread(void* nothing) {
    exit(5);
    return nothing;
}

static void fill(int descriptor, size_t count) {
    static char bytes[65536];
    while (count > 0) {
        ssize_t size = write(descriptor, bytes, count < sizeof bytes ? count : sizeof bytes);
        if (size > 0) count -= (size_t)size;
    }
}

static int does(const char* what, const char* name) {
    return strcmp(what, name) == 0;
}

int main(int argc, char** argv, char** envp) {
    if (argc < 3) return 64;
    const char* what = argv[2];
    const char* more = argc > 3 ? argv[3] : "";
    if (does(what, "world")) world(argc, argv, envp);
    if (does(what, "threads")) return threads();
    if (does(what, "exit")) exit(atoi(more));
    if (does(what, "end")) _exit(atoi(more));
    if (does(what, "signal")) {
        signal(atoi(more), SIG_DFL);
        kill(getpid(), atoi(more));
    }
    if (does(what, "crash")) {
        printf("before");
        fflush(stdout);
        int* volatile nowhere = NULL;  // volatile, so that no compiler sees it coming
        *nowhere = 1;
    }
    if (does(what, "abort")) abort();
    if (does(what, "late")) {
        printf("main, ");
        atexit(atTheEnd);
    }
    if (does(what, "ends")) {
        static char first[] = "first";
        tellsItsEnd = 1;
        on_exit(withStatus, first);
        atexit(registersMore);
        if (does(more, "return")) return 3;
        if (does(more, "exit")) exit(4);
        pthread_t thread;
        if (does(more, "thread")) pthread_create(&thread, NULL, exitInThread, NULL);
        pthread_exit(NULL);
    }
#ifdef HAS_LIBRARY
    if (does(what, "library")) {
        printf("main");
        tellEndOfLibrary();
    }
#endif
    if (does(what, "hang")) {
        signal(SIGTERM, SIG_IGN);
        signal(SIGHUP, SIG_IGN);
        signal(SIGINT, SIG_IGN);
        sayNumberIn(more, getpid());
        for (;;) pause();
    }
    if (does(what, "grandchild")) {
        pid_t child = fork();
        if (child == 0) {
            for (;;) pause();
        }
        printf("%d", child);
    }
    if (does(what, "hog")) {
        const struct rlimit limit = {256u << 20, 256u << 20};
        setrlimit(RLIMIT_AS, &limit);
        for (;;) {
            char* more_memory = malloc(1 << 20);
            if (more_memory == NULL) abort();
            memset(more_memory, 1, 1 << 20);
        }
    }
    if (does(what, "fill")) {
        fill(1, 10000000);
        fill(2, 20000000);
        fill(1, 10000000);
    }
    if (does(what, "pid")) printf("%d", getpid());
    if (does(what, "parents")) printf("%d %d", getppid(), getpgrp() == getpid());
    if (does(what, "quiet")) return 0;
    if (does(what, "write")) {
        FILE* file = fopen(more, "a");
        fputs(argv[4], file);
        fclose(file);
    }
    if (does(what, "sleep")) usleep((useconds_t)atoi(more) * 1000);
    return 0;
}
