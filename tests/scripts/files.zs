# The file classes on one scratch file in the working directory, overwritten
# by every run.

# 工具.二进制文件流 writes a type's signature before the data and counts the
# data alone; it reads past the signature of the type it is told.
b = new 工具.二进制文件流
print b.写到文件(x"616263", "zel_io_script.dat", 4)
print b.读入文件("zel_io_script.dat", 4)
print b.读入文件("zel_io_script.dat", 1)
print b.取文件类型("zel_io_script.dat")
print b.写到文件(x"6100", "zel_io_script.dat", 2), b.取文件类型("zel_io_script.dat")
print b.写到文件(x"6100", "zel_io_script.dat", 3), b.取文件类型("zel_io_script.dat")
print b.读入文件("zel_io_script.dat", 3)

# Without a signature the content decides: legal UTF-8 up to the first zero
# byte is 5, anything else 1, an empty file 0.
print b.写到文件(x"e4b8ade69687", "zel_io_script.dat", 5), b.取文件类型("zel_io_script.dat")
print b.写到文件(x"c0af", "zel_io_script.dat", 1), b.取文件类型("zel_io_script.dat")
print b.写到文件(x"eda080", "zel_io_script.dat", 1), b.取文件类型("zel_io_script.dat")
print b.写到文件(x"6f6b00ff", "zel_io_script.dat", 1), b.取文件类型("zel_io_script.dat")
print b.写到文件(x"616263", "zel_io_script.dat", 0), b.写到文件(x"616263", "zel_io_script.dat", 6)
print b.写到文件(x"", "zel_io_script.dat", 1), b.取文件类型("zel_io_script.dat")
print b.读入文件("zel_io_script.dat", 1), b.读入文件("zel_io_script.dat", 9)
print b.读入文件("/tmp/zel_io_script_absent.dat", 1)

# 工具.文件: the seeks answer fseek's status, 取长度 rewinds to the start.
# 写 takes its count from word 1 and its bytes from byte 8 of the byte set:
# one byte, the low byte of the length.
f = new 工具.文件
print f.打开("zel_io_script.dat", 2)
print f.写(x"616263")
f.关闭()
b.写到文件(x"30313233343536373839", "zel_io_script.dat", 1)
print f.打开("zel_io_script.dat", 4)
print f.首定位(6), f.取读写位置()
print f.取长度(), f.取读写位置()
print f.读(4), ok
print f.读(8), ok
print f.是否在文件尾()
print f.读(8), ok
print f.定位到文件尾(), f.尾定位(-3), f.取读写位置()
print f.定位(-2), f.取读写位置()
print f.定位(null, 1), f.取读写位置()
print f.定位(x"00", 1)
f.定位到文件首()
print f.取读写位置()
f.刷新()
f.关闭()
print f.取读写位置(), f.取长度()
print f.打开("/tmp/zel_io_script_absent/x", 1)

# 工具.文本文件 finds the encoding from FF FE or FE FF; wide files count
# 4-byte characters behind the signature.
b.写到文件(x"610000006200000063000000", "zel_io_script.dat", 2)
t = new 工具.文本文件
print t.打开("zel_io_script.dat", 4, 2)
print t.取读写位置()
print t.首定位(2), t.取读写位置()
print t.读(5), ok
print t.读(5), ok
print t.定位到文件尾(), t.取读写位置()
print t.取长度()
t.定位到文件首()
print t.取读写位置()
print t.写(x"41000000")
# A UTF-8 signature keeps the default encoding given; such files never seek.
b.写到文件(x"616263", "zel_io_script.dat", 4)
print t.打开("zel_io_script.dat", 1, 3)
print t.首定位(1), t.取读写位置(), t.取长度()
print t.读(2), ok

# 工具.内存文件: the same members over bytes in memory; seeks clip and
# answer the new position.
m = new 工具.内存文件
print m.写(x"68656c6c6f"), m.取读写位置()
print m.首定位(1)
print m.读(3), ok
print m.写(x"2121"), m.取数据()
print m.尾定位(-100), m.定位(null, 3), m.定位(-1), m.定位(x"00", 1)
print m.定位到文件尾(), m.读(4), m.取长度()
