
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
