extern "C" int nobodyDefinesThis();
int callsIt();

int callsIt() {
    return nobodyDefinesThis();
}
