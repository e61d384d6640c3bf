#include "Tool.h"

int main(int argc, char **argv)
{
    return runTool(argc, argv);
}
