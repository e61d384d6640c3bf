extern "C" __attribute__((visibility("default"))) int LogTrace_GetGlobalObject(int, void **)
{
    return 0;
}
