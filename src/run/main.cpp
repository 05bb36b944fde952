#include "run/run_driver.h"

int main(int argc, char** argv)
{
    return vantor::RunPulse(argc, argv);
}
