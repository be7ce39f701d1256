# Writes each C++ block of a page to "folder/SECTION NUMBER.inc".
/^## / { section = substr($0, 4); number = 0 }
/^```/ { if (!inside && /^```cpp/) file = folder "/" section " " ++number ".inc"; else file = ""; inside = !inside; next }
file { print > file }
