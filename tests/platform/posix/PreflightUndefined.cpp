extern "C" int undefinedFunction();
int callsUndefinedFunction();

int callsUndefinedFunction() {
    return undefinedFunction();
}
