extern "C" int undefinedFunction();

int undefinedFunction() {
    return 1;
}
