// A driver from before most of its functions.
extern "C" {
__attribute__((visibility("default"))) int ZELPrOpen(void *, void **) {
    return 0;
}
__attribute__((visibility("default"))) int ZELPrClose(void *) {
    return 0;
}
}
