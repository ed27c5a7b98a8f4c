# Recipe: write a UTF-8 text file with its signature, tell its type, read it
# back. The file is a scratch file in the working directory.
b = new 工具.二进制文件流
print b.写到文件(x"e4bda0e5a5bd0a", "guide_files.txt", 工具.文件类型选项.UTF8)
print b.取文件类型("guide_files.txt")
print b.读入文件("guide_files.txt", 工具.文件类型选项.UTF8)
# 工具.文件 reads bytes at a position. Its seeks answer 0, not the position.
f = new 工具.文件
print f.打开("guide_files.txt", 1)
print f.取长度()
print f.首定位(3), f.取读写位置()
print f.读(3)
f.关闭()
