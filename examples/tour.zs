# A tour of the 工具 class library, run by the runtime host:
#
#   ZELCLS_PATHS=build build/ncl run examples/tour.zs
#
# Each section creates objects of one family of classes and calls their
# methods. The script language (one statement a line):
#   x = new 工具.文本类          create an object (the variable holds a reference)
#   x.添加("ab")                 call a method; arguments are literals or variables
#   print x.查找("b", 0)         print values: 1, 2.5, "text", x"6162", 真/假, null
#   y = x.文本 / x.文本 = "xy"   read / write a property
#   print 工具.数学运算.求次方(2.0, 10.0)    call a static method
#   expect x.取长度() == 2       check a value (also !=, <, >, <=, >=)
#   expect error x.删除(9, 1)    check that a call raises
# docs/runtime-abi.md tells the whole language; `ncl show build/工具.ncl CLASS`
# shows any class, and docs/reference.md lists them all.

# ---- Boxed values, text and date-time ----------------------------------
# A basic value boxed in an object can stand where an object is wanted.
n = new 工具.整数类
n.整数 = 42
print n.整数
bytes = new 工具.字节集类
bytes.字节集 = x"48690a"
print bytes.取数据长度()

# 工具.文本类 is a text you can change in place.
text = new 工具.文本类
text.添加("world")
text.插入(0, "hello, ")
print text.文本
print text.查找("o", 5)
print text.倒找("o", -1)

# A new date-time holds the current local time; its fields can be set freely.
day = new 工具.日期时间类
day.年 = 2024
day.月 = 3
day.日 = 5
print day.到文本()

# 工具.双精度类 and 工具.逻辑类 box a double and a logical the same way.
ratio = new 工具.双精度类
ratio.小数 = 0.25
flag = new 工具.逻辑类
flag.逻辑 = 真
print ratio.小数, flag.逻辑

# ---- Colour, font and geometry ------------------------------------------
# A colour is three bytes; it converts to and from "r, g, b".
sky = new 工具.颜色
sky.初始化(135, 206, 235)
print sky.到文本()
# A font is a name and six attributes, also convertible to text.
font = new 工具.字体
font.到对象("宋体, 134, 12")
print font.名称, font.尺寸, font.字重

# Rectangles are half-open: the right and bottom edges lie outside.
box = new 工具.矩形
box.初始化(0, 0, 100, 50)
print box.包含点(99, 49), box.包含点(100, 0)
corner = new 工具.坐标点
corner.初始化(90, 40)
print box.包含坐标点(corner)
other = new 工具.矩形
other.置位置尺寸(80, 30, 40, 40)
box.合并(other)
print box.到文本()
box.求交集(other)
print box.到文本(), box.宽度, box.高度

# A size is a width and a height.
area = new 工具.尺寸
area.初始化(640, 480)
print area.到文本(), area.是否为空()

# ---- Containers -----------------------------------------------------------
# Containers hold objects. A list is addressed by position and keeps a
# reference on each item; a map matches wrapped values by value; a stack
# keeps its pointers as they are pushed.
shopping = new 工具.列表
shopping.加入项目(new 工具.文本类, 真)
shopping.取项目(0).文本 = "bread"
shopping.插入项目(0, new 工具.文本类)
shopping.取项目(0).文本 = "milk"
print shopping.取项目数(), shopping.取项目(0).文本, shopping.取项目(1).文本
prices = new 工具.映射表
milk = new 工具.文本类
milk.文本 = "milk"
prices.置键值(milk, new 工具.整数类)
lookup = new 工具.文本类
lookup.文本 = "milk"
print prices.键是否存在(lookup), prices.取个数()
undo = new 工具.栈
undo.加入(milk)
undo.加入(lookup)
print undo.取项目数(), undo.取项目().文本
undo.删除()
print undo.取项目数()

# ---- Files and streams --------------------------------------------------
# 工具.二进制文件流 writes and reads whole files, with the
# signature of a 工具.文件类型选项 type (4 is UTF-8 with EF BB BF), and tells
# a file's type; 工具.文件 reads and writes bytes at a position. The memory
# streams carry what objects serialize, packed and little-endian; the memory
# file is the file interface over bytes in memory.
disk = new 工具.二进制文件流
print 工具.文件类型选项.UTF8
print disk.写到文件(x"e4bda0e5a5bd", "/tmp/zel_io_script.dat", 4), disk.取文件类型("/tmp/zel_io_script.dat")
print disk.读入文件("/tmp/zel_io_script.dat", 4)
raw = new 工具.文件
raw.打开("/tmp/zel_io_script.dat", 1)
print raw.取长度(), raw.读(3)
raw.关闭()
# 工具.文本文件 opens with a default encoding (2: the locale's multibyte text).
notes = new 工具.文本文件
print notes.打开("/tmp/zel_io_script.dat", 1, 2), notes.定位到文件尾()
stream = new 工具.内存流
spot = new 工具.坐标点
spot.初始化(10, 20)
spot.序列化(stream)
stream.写文本("done")
print stream.取长度(), stream.读整数(), stream.读整数(), stream.读文本()
memo = new 工具.内存文件
memo.写(x"0102030405")
memo.首定位(3)
print memo.读(10), memo.取读写位置(), memo.取数据()
# The one-way streams: write into one, read back from another.
sink = new 工具.内存输出流
sink.写整数(7)
source = new 工具.内存输入流
source.初始化数据(sink.取数据())
print sink.取长度(), source.读整数()

# ---- Math and raw memory -------------------------------------------------
# 工具.数学运算 is all static methods over the C math library. A few keep
# their own rules: 整除 is the quotient less the remainder, 求反对数 is log10.
print 工具.数学运算.求次方(2.0, 10.0), 工具.数学运算.求平方根(2.0), 工具.数学运算.求极限(1.2)
print 工具.数学运算.整除(7.0, 2.0), 工具.数学运算.求反对数(100.0), 工具.数学运算.改符号(-0.0)
# 工具.地址 takes the address of a value's storage; 工具.指针 reads and
# writes bytes, shorts, integers, floats and doubles there and steps by 步长.
# Nothing but the null address is checked: see docs/classes/raw-memory.md.
buffer = x"0000000000000000"
where = new 工具.地址
where.置为字节集地址(buffer)
cursor = new 工具.指针
cursor.指向(where)
cursor.步长 = 2
cursor.短整数 = 513
cursor.前进()
cursor.短整数 = -1
print buffer, cursor.整数
cursor.后退()
print cursor.整数, cursor.字节
